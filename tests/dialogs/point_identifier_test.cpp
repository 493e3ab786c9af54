#include "dialogs/point_identifier.h"

#include <gtest/gtest.h>

#include <limits>

namespace pktaus {
namespace {

constexpr double kEast = 32654321.5;
constexpr double kNorth = 5612345.9;

TEST(PointIdentifier, DigitsOfCoordinates) {
  const double huge = std::numeric_limits<double>::infinity();
  const struct {
    const char* pattern;
    double east, north;
    const char *east_text, *north_text;
  } kCases[] = {
      {"32EEE", 32654321.5, 5612345.999, "32654321", "5612345"},
      {"32EEE", 654321.0, 0.9, "32654321", "0"},
      {"32EEE", 1654321.0, -0.9, "1654321", "0"},
      {"EENN", 5.0, -7.5, "EE5", "-7"},
      {"x", 654321.0, 1.0, "x", "1"},
      {"", 654321.0, 1.0, "", "1"},
      {"32", -12.7, huge, "32-12", "2147483647"},
      {"32", huge, -huge, "2147483647", "-2147483648"},
  };
  for (const auto& c : kCases) {
    const IdentifierDigits digits = MakeIdentifierDigits(c.pattern, c.east, c.north);
    EXPECT_EQ(digits.east, c.east_text) << c.pattern << " " << c.east;
    EXPECT_EQ(digits.north, c.north_text) << c.pattern << " " << c.north;
  }
}

TEST(PointIdentifier, IsMadeAndFitsItsOwnPattern) {
  const struct {
    const char* pattern;
    double east, north;
    const char* number;
    const char* identifier;
    bool fits;
  } kCases[] = {
      {"32EEENNNN0xxxxx", kEast, kNorth, nullptr, "326545612000000", true},
      {"32EEENNNN0xxxxx", kEast, kNorth, "123", "326545612000123", true},
      {"32EEENNNN0xxxxx", 654321.0, kNorth, "123", "326545612000123", true},
      {"32EEENNNN0xxxxx", kEast, kNorth, "9876543", "326545612076543", true},
      {"32EEENNNN0xxxxx", kEast, kNorth, "12a", "32654561200012a", false},
      {"32EEENNNN0xxxxx", kEast, kNorth, "", "326545612000000", true},
      {"EE-EE", kEast, kNorth, nullptr, "32-54", true},
      {"EExNEx", kEast, kNorth, nullptr, "320560", true},
      {"EExNEx", kEast, kNorth, "123", "3223", false},
      {"NEN", kEast, kNorth, "1", "536", true},
      {"xxxxxxxxxxxxxx", kEast, kNorth, "12", "000000000012", false},
      {"xxxxxxxxxxxxxx", kEast, kNorth, "1234", "00000000001234", true},
      {"NNNNNNNNNx", kEast, kNorth, nullptr, "5612345", false},
      {"EEEEEEEEEE", 4711.0, kNorth, nullptr, "EE4711", false},
      {"", kEast, kNorth, "1", "", true},
  };
  for (const auto& c : kCases) {
    const IdentifierDigits digits = MakeIdentifierDigits(c.pattern, c.east, c.north);
    const std::string made = MakePointIdentifier(c.pattern, digits, c.number);
    EXPECT_EQ(made, c.identifier) << c.pattern;
    EXPECT_EQ(FitsPointIdentifier(made, c.pattern, digits), c.fits) << c.pattern << " " << made;
  }
}

TEST(PointIdentifier, EachPlaceIsCompared) {
  const char* pattern = "32EENNx-";
  const IdentifierDigits digits = MakeIdentifierDigits(pattern, kEast, kNorth);
  const std::string right = "3265569-";
  ASSERT_TRUE(FitsPointIdentifier(right, pattern, digits));
  for (std::size_t i = 0; i < right.size(); ++i) {
    for (const char wrong : {'x', '\0', ':', '/'}) {
      std::string other = right;
      other[i] = wrong;
      EXPECT_FALSE(FitsPointIdentifier(other, pattern, digits)) << other;
    }
    EXPECT_FALSE(FitsPointIdentifier(right.substr(0, i), pattern, digits)) << i;
  }
  EXPECT_TRUE(FitsPointIdentifier(right + "und mehr", pattern, digits));
  EXPECT_TRUE(FitsPointIdentifier("alles", "", digits));
}

}  // namespace
}  // namespace pktaus
