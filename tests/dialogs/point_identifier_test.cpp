#include "dialogs/point_identifier.h"

#include <gtest/gtest.h>

namespace pktaus {
namespace {

constexpr double kEast = 32654321.5;
constexpr double kNorth = 5612345.9;

TEST(PointIdentifier, IsMadeAndFitsItsOwnPattern) {
  const char* const usual = "32EEENNNN0xxxxx";
  const struct {
    const char* pattern;
    double east;
    const char *number, *identifier;
    bool fits;
  } kCases[] = {
      {usual, kEast, nullptr, "326545612000000", true},
      {usual, 654321.0, "123", "326545612000123", true},
      {usual, kEast, "9876543", "326545612076543", true},
      {usual, kEast, "12a", "32654561200012a", false},
      {"EExNEx", kEast, nullptr, "320560", true},
      {"EExNEx", kEast, "123", "3223", false},
      {"xxxxxxxxxxxxxx", kEast, "12", "000000000012", false},
      {"EEEEEEEEEE", 4711.0, nullptr, "EE4711", false},
      {"EEEEEEEEEE", 1e300, nullptr, "2147483647", true},
      {"", kEast, "1", "", true},
  };
  for (const auto& c : kCases) {
    const IdentifierDigits digits = MakeIdentifierDigits(c.pattern, c.east, kNorth);
    const std::string made = MakePointIdentifier(c.pattern, digits, c.number);
    EXPECT_EQ(made, c.identifier) << c.pattern;
    EXPECT_EQ(FitsPointIdentifier(made, c.pattern, digits), c.fits) << c.pattern << " " << made;
  }
}

TEST(PointIdentifier, EachPlaceIsCompared) {
  const IdentifierDigits digits = MakeIdentifierDigits("32EENNx-", kEast, kNorth);
  EXPECT_TRUE(FitsPointIdentifier("3265569-und mehr", "32EENNx-", digits));
  for (const char* wrong : {"x265569-", "3x65569-", "32x5569-", "326x569-", "3265x69-", "32655x9-", "326556:-",
                            "326556/-", "3265569x", "3265569", ""}) {
    EXPECT_FALSE(FitsPointIdentifier(wrong, "32EENNx-", digits)) << wrong;
  }
}

}  // namespace
}  // namespace pktaus
