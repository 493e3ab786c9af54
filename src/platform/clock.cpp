#include "platform/clock.h"

#include <time.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/time_zone.h"

namespace platform {
namespace {

constexpr std::int64_t kDay = 86400;

std::chrono::year_month_day DateOf(const CivilTime& t) { return std::chrono::year(t.year) / t.month / t.day; }

bool IsInCalendar(const CivilTime& t) {
  return t.year >= 1 && t.year <= 9999 && t.month >= 1 && t.month <= 12 && t.day >= 1 && t.day <= 31 &&
         DateOf(t).ok() && t.hour >= 0 && t.hour < 24 && t.minute >= 0 && t.minute < 60 && t.second >= 0 &&
         t.second < 60;
}

// Seconds since 1970 of a broken-down time, were it UTC; and back.
std::int64_t AsUtc(const CivilTime& t) {
  const std::int64_t days = std::chrono::sys_days(DateOf(t)).time_since_epoch().count();
  return days * kDay + t.hour * 3600 + t.minute * 60 + t.second;
}

CivilTime FromUtc(std::int64_t seconds) {
  using std::chrono::days;
  const auto moment = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  const auto day = std::chrono::floor<days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(time.hours().count()),
          static_cast<int>(time.minutes().count()),
          static_cast<int>(time.seconds().count())};
}

CivilTime MachineLocal(std::int64_t seconds) {
  const time_t moment = seconds;
  tm parts{};
  if (localtime_r(&moment, &parts) == nullptr) return {};
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

// The inverse of a clock's ToLocal.
bool MomentOf(const Clock& clock, const CivilTime& local, std::int64_t* seconds) {
  if (!IsInCalendar(local)) return false;
  const std::int64_t utc = AsUtc(local);
  const auto offset_at = [&](std::int64_t moment) { return AsUtc(clock.ToLocal(moment)) - moment; };
  const std::int64_t before = utc - offset_at(utc - kDay);
  const std::int64_t after = utc - offset_at(utc + kDay);
  // An hour that comes twice is taken the first time; one that the clocks skip is counted on from before the jump.
  *seconds = AsUtc(clock.ToLocal(before)) == utc || AsUtc(clock.ToLocal(after)) != utc ? before : after;
  return true;
}

class MachineClock : public Clock {
 public:
  std::int64_t Now() const override { return time(nullptr); }
  CivilTime ToLocal(std::int64_t seconds) const override { return MachineLocal(seconds); }
  bool FromLocal(const CivilTime& local, std::int64_t* seconds) const override {
    return MomentOf(*this, local, seconds);
  }
};

// "YYYY-MM-DDThh:mm:ss"
bool ReadLocalTime(std::string_view text, CivilTime* t) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00";
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (kForm[i] == '0' ? !digit : text[i] != kForm[i]) return false;
  }
  const auto number = [&](std::size_t at, std::size_t size) {
    int value = 0;
    for (const char c : text.substr(at, size)) value = value * 10 + (c - '0');
    return value;
  };
  *t = {number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2), number(17, 2)};
  return true;
}

class StandingClock : public Clock {
 public:
  /// In the machine's zone where none is given.
  explicit StandingClock(std::optional<TimeZone> zone) : zone_(std::move(zone)) {}
  bool Set(const CivilTime& local) { return FromLocal(local, &now_); }

  std::int64_t Now() const override { return now_; }
  CivilTime ToLocal(std::int64_t seconds) const override {
    return zone_ ? FromUtc(seconds + zone_->OffsetAt(seconds)) : MachineLocal(seconds);
  }
  bool FromLocal(const CivilTime& local, std::int64_t* seconds) const override {
    return MomentOf(*this, local, seconds);
  }

 private:
  std::optional<TimeZone> zone_;
  std::int64_t now_ = 0;
};

const Clock* current = nullptr;

}  // namespace

const Clock& SystemClock() {
  static const MachineClock clock;
  return clock;
}

Clock* NewStandingClock(const char* local_time, const char* zone) {
  CivilTime t;
  if (local_time == nullptr || !ReadLocalTime(local_time, &t)) return nullptr;
  std::optional<TimeZone> found;
  if (zone != nullptr && *zone != '\0') {
    found = TimeZone::Named(zone);
    if (!found) return nullptr;
  }
  auto clock = std::make_unique<StandingClock>(std::move(found));
  return clock->Set(t) ? clock.release() : nullptr;
}

const Clock& CurrentClock() { return current != nullptr ? *current : SystemClock(); }

const Clock* SetClock(const Clock* clock) {
  const Clock* before = &CurrentClock();
  current = clock;
  return before;
}

}  // namespace platform
