// Time zones read once and computed here: the C library knows one zone a process and reads it at each change.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Distance of local time from UTC, in seconds, east positive.
class TimeZone {
 public:
  /// The zone of that name in the system's folder of zones (or that of TZDIR), or told by a rule such as
  /// "CET-1CEST,M3.5.0,M10.5.0/3"; nothing where it is neither. "UTC" and "Europe/Berlin" are known on any machine.
  static std::optional<TimeZone> Named(const std::string& zone);

  std::int64_t OffsetAt(std::int64_t seconds) const;

 private:
  // A day of each year and a time of it.
  struct Change {
    enum class Day { kOfMonth, kWithoutLeapDay, kFromZero } kind = Day::kOfMonth;
    int month = 0, week = 0, day = 0;
    std::int64_t time = 7200;  // seconds from midnight, also negative or beyond a day
  };
  struct Rule {
    std::int64_t standard = 0;
    bool has_summer = false;
    std::int64_t summer = 0;
    Change begin, end;
  };
  struct Transition {
    std::int64_t at;
    std::int64_t offset;
  };
  class RuleReader;

  bool ReadFile(const std::string& bytes);
  bool ReadRule(std::string_view text);
  static std::int64_t MomentOf(const Change& change, int year);

  std::vector<Transition> transitions_;
  std::int64_t before_ = 0;   // offset in front of the first transition
  std::optional<Rule> rule_;  // behind the last one
};

}  // namespace platform
