// A machine fault destroys nothing on its way out. While this lives, the leak checker does not count what is allocated.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define PKTAUS_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PKTAUS_ADDRESS_SANITIZER
#endif
#endif

#ifdef PKTAUS_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace support {

class FaultLeaks {
 public:
#ifdef PKTAUS_ADDRESS_SANITIZER
  FaultLeaks() { __lsan_disable(); }
  ~FaultLeaks() { __lsan_enable(); }
#else
  FaultLeaks() {}
  ~FaultLeaks() {}
#endif
  FaultLeaks(const FaultLeaks&) = delete;
  FaultLeaks& operator=(const FaultLeaks&) = delete;
};

}  // namespace support
