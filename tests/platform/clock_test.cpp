#include "platform/clock.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>

#include "platform/time_zone.h"

namespace {

using platform::CivilTime;
using platform::Clock;

auto Parts(const CivilTime& t) { return std::tuple(t.year, t.month, t.day, t.hour, t.minute, t.second); }

TEST(Clock, FindsTheMomentOfALocalTimeAndComesBack) {
  const char *const berlin = "Europe/Berlin", *const rule = "CET-1CEST,M3.5.0,M10.5.0/3";
  const struct {
    const char *name, *zone;
    CivilTime local;
    std::int64_t seconds;
    CivilTime back;
  } kTimes[] = {
      {"leap day in winter", berlin, {2016, 2, 29, 9, 0, 0}, 1456732800, {2016, 2, 29, 9, 0, 0}},
      {"midnight in summer", rule, {2016, 8, 1, 0, 0, 0}, 1470002400, {2016, 8, 1, 0, 0, 0}},
      {"skipped hour", berlin, {2016, 3, 27, 2, 30, 0}, 1459042200, {2016, 3, 27, 3, 30, 0}},
      {"hour that comes twice", berlin, {2016, 10, 30, 2, 30, 0}, 1477787400, {2016, 10, 30, 2, 30, 0}},
      {"noon behind the jump", berlin, {2016, 3, 27, 12, 0, 0}, 1459072800, {2016, 3, 27, 12, 0, 0}},
  };
  for (const auto& row : kTimes) {
    const std::unique_ptr<Clock> clock(platform::NewStandingClock("2020-01-01T12:00:00", row.zone));
    std::int64_t seconds = 0;
    EXPECT_TRUE(clock->FromLocal(row.local, &seconds)) << row.name;
    EXPECT_EQ(seconds, row.seconds) << row.name;
    EXPECT_EQ(Parts(clock->ToLocal(seconds)), Parts(row.back)) << row.name;
  }
}

TEST(Clock, StandsWhereItIsToldAndLeavesTheZoneOfTheMachine) {
  setenv("TZ", "UTC0", 1);
  const std::unique_ptr<Clock> clock(platform::NewStandingClock("2016-03-02T09:05:03", "Europe/Berlin"));
  EXPECT_EQ(clock->Now(), 1456905903);
  EXPECT_EQ(platform::SystemClock().ToLocal(1456905903).hour, 8);
  unsetenv("TZ");
  for (const char* time : {"", "2016-03-02 09:05:03", "2016-02-30T00:00:00", "2016-03-02T09:05:03Z"}) {
    EXPECT_EQ(platform::NewStandingClock(time, "UTC"), nullptr) << time;
  }
  EXPECT_EQ(platform::NewStandingClock("2016-03-02T09:05:03", "Europa/Berlin"), nullptr);
}

// Each kind of zone and rule beside the C library, which knows one zone a process.
TEST(Clock, KeepsTheZonesOfTheWorldAsTheLibraryDoes) {
  for (const char* zone :
       {"Europe/Berlin", "Europe/London", "America/New_York", "Asia/Kolkata", "Australia/Lord_Howe",
        "Africa/Casablanca", "Pacific/Apia", "UTC", "EST5EDT", "CET-1CEST,M3.5.0,M10.5.0/3",
        "<+0330>-3:30<+0430>,J79/24,J263/24", "AAA3BBB2,100,J60/2", "XYZ+12:30:15", "IST-2IDT,M3.4.4/26,M10.5.0",
        "NZST-12NZDT,M9.5.0,M4.1.0/3", "AAA3BBB,M3.2.0/-2:30,M11.1.0"}) {
    setenv("TZ", zone, 1);
    tzset();
    const std::optional<platform::TimeZone> ours = platform::TimeZone::Named(zone);
    ASSERT_TRUE(ours) << zone;
    int differ = 0;
    // Behind 1970: rules of earlier years are not the C library's.
    for (time_t t = std::strchr(zone, ',') != nullptr ? 40'000'000 : -2'500'000'000; t < 6'000'000'000;
         t += 1'234'567) {
      tm parts{};
      localtime_r(&t, &parts);
      differ += ours->OffsetAt(t) != parts.tm_gmtoff;
    }
    EXPECT_EQ(differ, 0) << zone;
  }
  unsetenv("TZ");
  tzset();
  for (const char* wrong : {"CE-1", "CET-25", "CET-1CEST,M3.5.0", "CET-1CEST,M13.5.0,M10.5.0", "<CET-1", "../x", "X"})
    EXPECT_FALSE(platform::TimeZone::Named(wrong)) << wrong;
}

}  // namespace
