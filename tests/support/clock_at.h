// A clock that stands at a local time for a block.
#pragma once

#include <memory>

#include "platform/clock.h"

namespace support {

class ClockAt {
 public:
  explicit ClockAt(const char* local_time)
      : clock_(platform::NewStandingClock(local_time, "Europe/Berlin")), before_(platform::SetClock(clock_.get())) {}
  ~ClockAt() { platform::SetClock(before_); }

 private:
  std::unique_ptr<platform::Clock> clock_;
  const platform::Clock* before_;
};

}  // namespace support
