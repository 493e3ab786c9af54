// The one place where the time is asked.
#pragma once

#include <cstdint>

namespace platform {

/// A moment broken down in the local time zone. Month and day from 1, second up to 60.
struct CivilTime {
  int year = 1970;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// Clock and time zone. Crosses the library's border: the host gives the plug-in the one that it runs by.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Seconds since 1970-01-01T00:00:00 UTC.
  virtual std::int64_t Now() const = 0;
  virtual CivilTime ToLocal(std::int64_t seconds) const = 0;
  /// The moment of a local time of the years 1 to 9999; false, with `seconds` untouched, where the calendar has no such
  /// day or time. An hour that comes twice counts as the first; one that the clocks skip is counted on from before the
  /// jump, so that every day has a midnight.
  virtual bool FromLocal(const CivilTime& local, std::int64_t* seconds) const = 0;
};

/// The machine's own clock and time zone.
const Clock& SystemClock();

/// A clock that stands still at a local time, in the time zone of that name ("Europe/Berlin") or rule
/// ("CET-1CEST,M3.5.0,M10.5.0/3"), or in the machine's where `zone` is null or empty. Null where the text is no
/// "YYYY-MM-DDThh:mm:ss" or the zone is unknown. The caller deletes it.
Clock* NewStandingClock(const char* local_time, const char* zone);

/// The clock in force: the machine's at the start.
const Clock& CurrentClock();

/// Sets the clock in force, which must outlive its use; null sets the machine's. Gives the one before.
const Clock* SetClock(const Clock* clock);

}  // namespace platform
