// A clock that stands at a local time for a block.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/clock.h"

namespace support {

class ClockAt {
 public:
  explicit ClockAt(const char* local_time, const char* zone = "Europe/Berlin")
      : clock_(platform::NewStandingClock(local_time, zone)), before_(platform::SetClock(clock_.get())) {
    EXPECT_NE(clock_, nullptr);
  }
  ~ClockAt() { platform::SetClock(before_); }
  ClockAt(const ClockAt&) = delete;
  ClockAt& operator=(const ClockAt&) = delete;

 private:
  std::unique_ptr<platform::Clock> clock_;
  const platform::Clock* before_;
};

}  // namespace support
