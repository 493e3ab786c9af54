// A machine fault destroys nothing on its way out. While this lives, the leak checker does not count what is allocated.
#pragma once

// The leak checker's own, where the program has one.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace support {

class FaultLeaks {
 public:
  FaultLeaks() {
    if (__lsan_disable != nullptr) __lsan_disable();
  }
  ~FaultLeaks() {
    if (__lsan_enable != nullptr) __lsan_enable();
  }
};

}  // namespace support
