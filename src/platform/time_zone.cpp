#include "platform/time_zone.h"

#include <stdlib.h>

#include <algorithm>
#include <cctype>
#include <chrono>

#include "platform/file.h"

namespace platform {
namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::size_t kMostOfFile = 1024 * 1024;

std::int64_t BigEndian(std::string_view bytes) {
  std::uint64_t value = (bytes.front() & 0x80) != 0 ? UINT64_MAX : 0;
  for (const char c : bytes) value = (value << 8) | static_cast<unsigned char>(c);
  return static_cast<std::int64_t>(value);
}

std::string ZoneFile(const std::string& zone) {
  if (zone.empty() || zone.find("..") != std::string::npos || zone.front() == '/') return {};
  const char* folder = getenv("TZDIR");
  File file;
  if (!file.OpenOnDisk((folder != nullptr ? std::string(folder) : "/usr/share/zoneinfo") + "/" + zone, OpenMode::kRead))
    return {};
  std::string bytes(kMostOfFile, '\0');
  bytes.resize(static_cast<std::size_t>(std::max<std::int64_t>(0, file.Read(bytes.data(), bytes.size()))));
  return bytes;
}

}  // namespace

// The form that TZ has: name, offset westwards, and where there is summer time its name, offset, begin and end.
class TimeZone::RuleReader {
 public:
  explicit RuleReader(std::string_view text) : rest_(text) {}

  bool Read(Rule* rule) {
    if (!Name() || !Time(24, &rule->standard)) return false;
    rule->standard = -rule->standard;
    if (rest_.empty()) return true;
    rule->has_summer = true;
    rule->summer = rule->standard + 3600;
    if (!Name()) return false;
    if (!rest_.empty() && rest_.front() != ',') {
      if (!Time(24, &rule->summer)) return false;
      rule->summer = -rule->summer;
    }
    if (rest_.empty()) rest_ = ",M3.2.0,M11.1.0";  // what the C library takes
    return Day(&rule->begin) && Day(&rule->end) && rest_.empty();
  }

 private:
  bool Take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool Number(int least, int most, int* value) {
    std::size_t size = 0;
    *value = 0;
    while (size < rest_.size() && size < 4 && rest_[size] >= '0' && rest_[size] <= '9') {
      *value = *value * 10 + (rest_[size++] - '0');
    }
    rest_.remove_prefix(size);
    return size > 0 && *value >= least && *value <= most;
  }
  bool Name() {
    std::size_t size = 0;
    if (Take('<')) {
      size = rest_.find('>');
      if (size == std::string_view::npos) return false;
      rest_.remove_prefix(size + 1);
      return true;
    }
    while (size < rest_.size() && std::isalpha(static_cast<unsigned char>(rest_[size])) != 0) ++size;
    rest_.remove_prefix(size);
    return size >= 3;
  }
  // [+-]h[:m[:s]] in seconds.
  bool Time(int most_hours, std::int64_t* seconds) {
    const bool minus = Take('-');
    if (!minus) Take('+');
    int hours = 0, minutes = 0, rest = 0;
    if (!Number(0, most_hours, &hours)) return false;
    if (Take(':') && !Number(0, 59, &minutes)) return false;
    if (Take(':') && !Number(0, 59, &rest)) return false;
    *seconds = (minus ? -1 : 1) * (hours * 3600 + minutes * 60 + rest);
    return true;
  }
  bool Day(Change* change) {
    if (!Take(',')) return false;
    bool good = false;
    if (Take('M')) {
      change->kind = Change::Day::kOfMonth;
      good = Number(1, 12, &change->month) && Take('.') && Number(1, 5, &change->week) && Take('.') &&
             Number(0, 6, &change->day);
    } else if (Take('J')) {
      change->kind = Change::Day::kWithoutLeapDay;
      good = Number(1, 365, &change->day);
    } else {
      change->kind = Change::Day::kFromZero;
      good = Number(0, 365, &change->day);
    }
    return good && (!Take('/') || Time(167, &change->time));
  }

  std::string_view rest_;
};

bool TimeZone::ReadRule(std::string_view text) {
  Rule rule;
  if (!RuleReader(text).Read(&rule)) return false;
  rule_ = rule;
  return true;
}

// Header of 44 bytes with six counts, then times, their types, the types and names. The second part of newer files has
// eight bytes a time, and the rule for all that follows as a line behind it.
bool TimeZone::ReadFile(const std::string& bytes) {
  constexpr std::size_t kHead = 44;
  const std::string_view all = bytes;
  std::size_t at = 0;
  for (const std::size_t wide : {std::size_t{4}, std::size_t{8}}) {
    if (all.size() - at < kHead || !all.substr(at).starts_with("TZif")) return false;
    const auto count = [&](std::size_t i) {
      return static_cast<std::size_t>(BigEndian(all.substr(at + 20 + 4 * i, 4)));
    };
    const std::size_t marks = count(0) + count(1), leaps = count(2), times = count(3), types = count(4),
                      names = count(5);
    if (std::max({marks, leaps, times, types, names}) > kMostOfFile) return false;
    const std::size_t size = kHead + times * (wide + 1) + types * 6 + names + leaps * (wide + 4) + marks;
    if (all.size() - at < size || types == 0) return false;
    if (wide == 4 && all[at + 4] >= '2') {
      at += size;
      continue;
    }
    const std::string_view moments = all.substr(at + kHead), kinds = moments.substr(times * wide),
                           table = kinds.substr(times);
    const auto offset = [&](std::size_t type) { return BigEndian(table.substr(type * 6, 4)); };
    before_ = offset(0);
    for (std::size_t i = 0; i < times; ++i) {
      const auto type = static_cast<unsigned char>(kinds[i]);
      if (type >= types) return false;
      transitions_.push_back({BigEndian(moments.substr(i * wide, wide)), offset(type)});
    }
    if (wide == 8) {
      const std::string_view line = all.substr(at + size);
      const std::size_t end = line.find('\n', 1);
      if (line.starts_with('\n') && end != std::string_view::npos && end > 1) ReadRule(line.substr(1, end - 1));
    }
    return true;
  }
  return false;
}

std::optional<TimeZone> TimeZone::Named(const std::string& zone) {
  TimeZone found;
  if (found.ReadFile(ZoneFile(zone))) return found;
  found = {};
  // A small machine may have no zone files. These two must work on any.
  const std::string rule = zone == "UTC" ? "UTC0" : zone == "Europe/Berlin" ? "CET-1CEST,M3.5.0,M10.5.0/3" : zone;
  if (!found.ReadRule(rule)) return std::nullopt;
  return found;
}

// Seconds since 1970 of the change in that year, were local time UTC.
std::int64_t TimeZone::MomentOf(const Change& change, int year) {
  using namespace std::chrono;
  const auto y = std::chrono::year(year);
  sys_days date = y / January / 1;
  if (change.kind == Change::Day::kOfMonth) {
    const weekday day(static_cast<unsigned>(change.day));
    const auto in_month = y / change.month;
    date = change.week == 5 ? sys_days(in_month / day[last])
                            : sys_days(in_month / day[static_cast<unsigned>(change.week)]);
  } else {
    const bool behind_leap_day = change.kind == Change::Day::kWithoutLeapDay && y.is_leap() && change.day >= 60;
    const int first = change.kind == Change::Day::kWithoutLeapDay ? 1 : 0;
    date += days(change.day - first + (behind_leap_day ? 1 : 0));
  }
  return static_cast<std::int64_t>(date.time_since_epoch().count()) * kDay + change.time;
}

std::int64_t TimeZone::OffsetAt(std::int64_t seconds) const {
  if (!transitions_.empty() && (seconds < transitions_.back().at || !rule_)) {
    const auto next = std::upper_bound(transitions_.begin(), transitions_.end(), seconds,
                                       [](std::int64_t moment, const Transition& t) { return moment < t.at; });
    return next == transitions_.begin() ? before_ : std::prev(next)->offset;
  }
  if (!rule_) return before_;
  if (!rule_->has_summer) return rule_->standard;
  using namespace std::chrono;
  const year_month_day date(floor<days>(sys_seconds(std::chrono::seconds(seconds))));
  const int year = static_cast<int>(date.year());
  const std::int64_t begin = MomentOf(rule_->begin, year) - rule_->standard;
  const std::int64_t end = MomentOf(rule_->end, year) - rule_->summer;
  const bool summer = begin < end ? seconds >= begin && seconds < end : seconds >= begin || seconds < end;
  return summer ? rule_->summer : rule_->standard;
}

}  // namespace platform
