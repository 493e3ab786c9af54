#include "platform/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>

namespace {

using platform::CivilTime;
using platform::Clock;

auto Parts(const CivilTime& t) { return std::tuple(t.year, t.month, t.day, t.hour, t.minute, t.second); }

constexpr char kBerlin[] = "Europe/Berlin";
constexpr char kRule[] = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(Clock, FindsTheMomentOfALocalTimeAndComesBack) {
  const struct {
    const char* name;
    const char* zone;
    CivilTime local;
    std::int64_t seconds;
    CivilTime back;
  } kTimes[] = {
      {"winter", kBerlin, {2016, 3, 2, 9, 5, 3}, 1456905903, {2016, 3, 2, 9, 5, 3}},
      {"midnight in summer", kBerlin, {2016, 8, 1, 0, 0, 0}, 1470002400, {2016, 8, 1, 0, 0, 0}},
      {"zone by its rule", kRule, {2016, 8, 1, 0, 0, 0}, 1470002400, {2016, 8, 1, 0, 0, 0}},
      {"skipped hour", kBerlin, {2016, 3, 27, 2, 30, 0}, 1459042200, {2016, 3, 27, 3, 30, 0}},
      {"hour that comes twice", kBerlin, {2016, 10, 30, 2, 30, 0}, 1477787400, {2016, 10, 30, 2, 30, 0}},
      {"leap day", "UTC", {2000, 2, 29, 0, 0, 0}, 951782400, {2000, 2, 29, 0, 0, 0}},
      {"before 1970", "UTC", {1900, 3, 1, 0, 0, 0}, -2203891200, {1900, 3, 1, 0, 0, 0}},
      {"first year", "UTC", {1, 1, 1, 0, 0, 0}, -62135596800, {1, 1, 1, 0, 0, 0}},
      {"last second", "UTC", {9999, 12, 31, 23, 59, 59}, 253402300799, {9999, 12, 31, 23, 59, 59}},
      {"midnight that the clocks skip",
       "BRT3BRST,M11.1.0/0,M2.3.0/0",
       {2018, 11, 4},
       1541300400,
       {2018, 11, 4, 1, 0, 0}},
  };
  for (const auto& row : kTimes) {
    const std::unique_ptr<Clock> clock(platform::NewStandingClock("2020-01-01T12:00:00", row.zone));
    ASSERT_NE(clock, nullptr) << row.name;
    std::int64_t seconds = 0;
    EXPECT_TRUE(clock->FromLocal(row.local, &seconds)) << row.name;
    EXPECT_EQ(seconds, row.seconds) << row.name;
    EXPECT_EQ(Parts(clock->ToLocal(seconds)), Parts(row.back)) << row.name;
  }
}

TEST(Clock, RefusesWhatNoCalendarHas) {
  const CivilTime kNever[] = {{2015, 2, 29}, {2100, 2, 29}, {2016, 0, 1},           {2016, 13, 1},
                              {2016, 4, 31}, {2016, 4, 0},  {2016, 4, 1, 24, 0, 0}, {2016, 4, 1, 0, 60, 0},
                              {0, 1, 1},     {10000, 1, 1}, {2016, 4, 1, 0, 0, -1}};
  for (const CivilTime& local : kNever) {
    std::int64_t seconds = 42;
    EXPECT_FALSE(platform::SystemClock().FromLocal(local, &seconds))
        << local.year << " " << local.month << " " << local.day;
    EXPECT_EQ(seconds, 42);
  }
}

TEST(Clock, StandsWhereItIsToldAndLeavesTheZoneOfTheMachine) {
  setenv("TZ", "UTC0", 1);
  const std::unique_ptr<Clock> clock(platform::NewStandingClock("2016-03-02T09:05:03", kBerlin));
  ASSERT_NE(clock, nullptr);
  const Clock* before = platform::SetClock(clock.get());
  EXPECT_EQ(platform::CurrentClock().Now(), 1456905903);
  EXPECT_EQ(platform::CurrentClock().ToLocal(1456905903).hour, 9);
  EXPECT_EQ(platform::SystemClock().ToLocal(1456905903).hour, 8);
  platform::SetClock(before);
  EXPECT_EQ(&platform::CurrentClock(), &platform::SystemClock());
  EXPECT_STREQ(getenv("TZ"), "UTC0");
  unsetenv("TZ");

  const char* const kNoTimes[] = {
      "", "2016-03-02", "2016-03-02 09:05:03", "2016-02-30T00:00:00", "2016-03-02T09:05:03Z", "2016--3-02T09:05:03"};
  for (const char* time : kNoTimes) EXPECT_EQ(platform::NewStandingClock(time, kBerlin), nullptr) << time;
  for (const char* zone : {"Europa/Berlin", "../../etc/passwd", "Berlin", "/etc/localtime"}) {
    EXPECT_EQ(platform::NewStandingClock("2016-03-02T09:05:03", zone), nullptr) << zone;
  }
}

}  // namespace
