#include "platform/clock.h"

#include <stdlib.h>
#include <time.h>

#include <cctype>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/file.h"

namespace platform {
namespace {

constexpr std::int64_t kDay = 86400;

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

bool IsInCalendar(const CivilTime& t) {
  return t.year >= 1 && t.year <= 9999 && t.month >= 1 && t.month <= 12 && t.day >= 1 &&
         t.day <= DaysInMonth(t.year, t.month) && t.hour >= 0 && t.hour < 24 && t.minute >= 0 && t.minute < 60 &&
         t.second >= 0 && t.second < 60;
}

// Seconds since 1970 of a broken-down time, were it UTC.
std::int64_t AsUtc(const CivilTime& t) {
  // Years from March on, so that the leap day is the last of its year; counted in whole eras of 400 years.
  const std::int64_t year = t.year - (t.month <= 2 ? 1 : 0);
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t year_of_era = year - era * 400;
  const std::int64_t day_of_year = (153 * (t.month + (t.month > 2 ? -3 : 9)) + 2) / 5 + t.day - 1;
  const std::int64_t days =
      era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year - 719468;
  return days * kDay + t.hour * 3600 + t.minute * 60 + t.second;
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

// Puts a time zone in force for a block. The C library knows one zone a process and has no call that takes another.
class ZoneScope {
 public:
  explicit ZoneScope(const std::string& zone) {
    if (const char* before = getenv("TZ")) before_ = before;
    setenv("TZ", zone.c_str(), 1);
    tzset();
  }
  ~ZoneScope() {
    if (before_) {
      setenv("TZ", before_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  ZoneScope(const ZoneScope&) = delete;
  ZoneScope& operator=(const ZoneScope&) = delete;

 private:
  std::optional<std::string> before_;
};

bool HasZoneFile(const std::string& zone) {
  if (zone.find("..") != std::string::npos || zone.front() == '/') return false;
  const char* folder = getenv("TZDIR");
  File file;
  char magic[4];
  return file.OpenOnDisk((folder != nullptr ? std::string(folder) : "/usr/share/zoneinfo") + "/" + zone,
                         OpenMode::kRead) &&
         file.Read(magic, sizeof magic) == sizeof magic && std::memcmp(magic, "TZif", sizeof magic) == 0;
}

// A zone told by its rule, such as "CET-1CEST,M3.5.0,M10.5.0/3": a name of three letters or more and an offset.
bool IsZoneRule(const std::string& zone) {
  std::size_t i = 0;
  while (i < zone.size() && std::isalpha(static_cast<unsigned char>(zone[i])) != 0) ++i;
  if (i < 3) return false;
  if (i < zone.size() && (zone[i] == '-' || zone[i] == '+')) ++i;
  return i < zone.size() && std::isdigit(static_cast<unsigned char>(zone[i])) != 0;
}

// What TZ has to hold for a zone; empty where the zone is unknown.
std::string ZoneSetting(const std::string& zone) {
  if (HasZoneFile(zone) || IsZoneRule(zone)) return zone;
  // A small machine may have no zone files. These two must work on any.
  if (zone == "UTC") return "UTC0";
  if (zone == "Europe/Berlin") return "CET-1CEST,M3.5.0,M10.5.0/3";
  return {};
}

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
  /// `zone` as in TZ; the machine's where empty.
  explicit StandingClock(std::string zone) : zone_(std::move(zone)) {}
  bool Set(const CivilTime& local) { return FromLocal(local, &now_); }

  std::int64_t Now() const override { return now_; }
  CivilTime ToLocal(std::int64_t seconds) const override {
    if (zone_.empty()) return MachineLocal(seconds);
    const ZoneScope scope(zone_);
    return MachineLocal(seconds);
  }
  bool FromLocal(const CivilTime& local, std::int64_t* seconds) const override {
    return MomentOf(*this, local, seconds);
  }

 private:
  std::string zone_;
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
  std::string setting;
  if (zone != nullptr && *zone != '\0') {
    setting = ZoneSetting(zone);
    if (setting.empty()) return nullptr;
  }
  auto clock = std::make_unique<StandingClock>(setting);
  return clock->Set(t) ? clock.release() : nullptr;
}

const Clock& CurrentClock() { return current != nullptr ? *current : SystemClock(); }

const Clock* SetClock(const Clock* clock) {
  const Clock* before = &CurrentClock();
  current = clock;
  return before;
}

}  // namespace platform
