#include "platform/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <tuple>

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

}  // namespace
