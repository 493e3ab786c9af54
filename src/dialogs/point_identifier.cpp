#include "dialogs/point_identifier.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace pktaus {
namespace {

constexpr std::size_t kFullEast = 7;

std::string WholeMetres(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  // The first test is turned so that it catches what is no number, too.
  if (!(value > Limits::min())) return std::to_string(Limits::min());
  if (value >= Limits::max()) return std::to_string(Limits::max());
  return std::to_string(static_cast<std::int32_t>(value));
}

/// Walks a pattern and gives for each character what the identifier must hold there.
class PatternWalk {
 public:
  explicit PatternWalk(const IdentifierDigits& digits) : digits_(digits) {}

  /// NUL where a coordinate has no digit left. A free digit gives '0'.
  char Next(char pattern) {
    switch (pattern) {
      case 'E':
        return Take(digits_.east, &east_);
      case 'N':
        return Take(digits_.north, &north_);
      case 'x':
        return '0';
      default:
        // A fixed character, such as the zone, stands for one of the east value's.
        Take(digits_.east, &east_);
        return pattern;
    }
  }

 private:
  static char Take(const std::string& text, std::size_t* at) { return *at < text.size() ? text[(*at)++] : '\0'; }

  const IdentifierDigits& digits_;
  std::size_t east_ = 0;
  std::size_t north_ = 0;
};

}  // namespace

IdentifierDigits MakeIdentifierDigits(std::string_view pattern, double east, double north) {
  IdentifierDigits digits{WholeMetres(east), WholeMetres(north)};
  // A pattern of one character leaves no room for a number behind it.
  if (digits.east.size() < kFullEast) {
    digits.east = std::string(pattern.substr(0, 2)) + (pattern.size() < 2 ? "" : digits.east);
  }
  return digits;
}

std::string MakePointIdentifier(std::string_view pattern, const IdentifierDigits& digits, const char* point_number) {
  std::string identifier;
  PatternWalk walk(digits);
  for (const char c : pattern) identifier += walk.Next(c);

  const std::size_t first_free = pattern.find('x');
  if (point_number != nullptr && first_free != std::string_view::npos) {
    const auto free = static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), 'x'));
    const std::string padded = std::string("0000000000") + point_number;
    identifier.replace(first_free, std::string::npos, padded.substr(padded.size() - std::min(padded.size(), free)));
  }
  return identifier.substr(0, identifier.find('\0'));
}

bool FitsPointIdentifier(std::string_view identifier, std::string_view pattern, const IdentifierDigits& digits) {
  if (identifier.size() < pattern.size()) return false;
  PatternWalk walk(digits);
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char expected = walk.Next(pattern[i]);
    const bool fits = pattern[i] == 'x' ? identifier[i] >= '0' && identifier[i] <= '9'
                                        : expected != '\0' && identifier[i] == expected;
    if (!fits) return false;
  }
  return true;
}

}  // namespace pktaus
