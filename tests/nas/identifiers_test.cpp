#include "nas/identifiers.h"

#include <gtest/gtest.h>

#include "nas/member.h"
#include "tests/support/clock_at.h"

namespace pktaus {
namespace {

TEST(Identifiers, CountInBase36FilledToSixteenCharacters) {
  struct Case {
    std::int32_t counter;
    const char* id;
  };
  const Case kCases[] = {
      {1, "DE_0000000000001"},  {9, "DE_0000000000009"},    {10, "DE_000000000000A"}, {35, "DE_000000000000Z"},
      {36, "DE_0000000000010"}, {1296, "DE_0000000000100"}, {0, "DE_0000000000000"},  {2147483646, "DE_0000000ZIK0ZI"},
  };
  for (const Case& c : kCases) {
    id_counter = c.counter;
    EXPECT_EQ(NewObjectId(), c.id);
    EXPECT_EQ(id_counter, c.counter + 1);
  }
}

TEST(Times, AreLocalAndFilledWithZeros) {
  const support::ClockAt clock("2016-03-02T09:05:03");
  EXPECT_EQ(NowStamp(), "2016-03-02T09:05:03Z");
  EXPECT_EQ(DayText(platform::CurrentClock().Now()), "2016-03-02");
  EXPECT_EQ(DayText(1456874400), "2016-03-02") << "23:20 UTC is past midnight in Berlin";
}

TEST(Coordinates, LoseTheZoneOfTheEastAlone) {
  struct Case {
    std::string east;
    std::string north;
    const char* text;
  };
  const Case kCases[] = {
      {"32632145.123", "5651234.567", "632145.123 5651234.567"},
      {"632145.123", "55651234.567", "632145.123 55651234.567"},
      {"32632145,123", "5651234,567", "632145.123 5651234.567"},
      {"1,234,5", "1,2,3", "1.234,5 1.2,3"},
      {"32145.123", "0.000", "32145.123 0.000"},
      {"32632145", "1", "32632145 1"},
      {"-1.000", "-2.000", "-1.000 -2.000"},
  };
  for (Case c : kCases) EXPECT_EQ(CoordinateText(&c.east, &c.north), c.text);
}

}  // namespace
}  // namespace pktaus
