#include "store/stored_day.h"

#include <limits>

#include "platform/clock.h"

namespace pktaus {
namespace {

constexpr std::int32_t kLastNoDate = 10000;
constexpr std::int32_t kLeastInEightDigits = -9'999'999;

}  // namespace

std::int32_t StoredDay(std::int32_t seconds) {
  if (seconds >= kLeastInEightDigits && seconds <= kLastNoDate) return seconds;
  const platform::CivilTime day = platform::CurrentClock().ToLocal(seconds);
  return day.year * 10000 + day.month * 100 + day.day;
}

std::int32_t SecondsOfStoredDay(std::int32_t stored) {
  if (stored <= kLastNoDate) return stored;
  const platform::CivilTime day{.year = stored / 10000, .month = stored / 100 % 100, .day = stored % 100};
  std::int64_t seconds = 0;
  if (!platform::CurrentClock().FromLocal(day, &seconds)) return stored;
  using Limits = std::numeric_limits<std::int32_t>;
  if (seconds < Limits::min() || seconds > Limits::max()) return stored;
  return static_cast<std::int32_t>(seconds);
}

}  // namespace pktaus
