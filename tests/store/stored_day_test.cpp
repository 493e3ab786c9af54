#include "store/stored_day.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/clock_at.h"

namespace pktaus {
namespace {

TEST(StoredDay, IsTheLocalDayOfADateAndAnyOtherValueItself) {
  const support::ClockAt clock("2016-03-02T09:05:03");
  struct Case {
    const char* name;
    std::int32_t seconds;
    std::int32_t stored;
    std::int32_t read;  // behind a trip through the table
  };
  const std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  const Case kCases[] = {
      {"none", 0, 0, 0},
      {"no value chosen", -1, -1, -1},
      {"last value that is no date", 10000, 10000, 10000},
      {"midnight", 1456873200, 20160302, 1456873200},
      {"in the afternoon", 1456873200 + 60000, 20160302, 1456873200},
      {"one second before midnight", 1456873199, 20160301, 1456786800},
      {"midnight in summer time", 1466546400, 20160622, 1466546400},
      {"day on which clocks go forward", 1459033200 + 80000, 20160327, 1459033200},
      {"leap day", 1456700400, 20160229, 1456700400},
      {"last day", kMost, 20380119, 2147468400},
      {"too long ago for eight digits of seconds", -149043600, 19650412, -149043600},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(StoredDay(c.seconds), c.stored);
    EXPECT_EQ(SecondsOfStoredDay(c.stored), c.read);
  }
}

TEST(StoredDay, PassesWhatIsNoDay) {
  const support::ClockAt clock("2016-03-02T09:05:03");
  for (const std::int32_t stored :
       {10001, 20160230, 20161301, 20160100, 20150229, 99999999, 20380120, std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(SecondsOfStoredDay(stored), stored);
  }
}

}  // namespace
}  // namespace pktaus
