// The pattern that an object type's point identifiers follow: "E" and "N" take the next digit of a coordinate, "x" is
// a free digit, any other character stands for itself.
#pragma once

#include <string>
#include <string_view>

namespace pktaus {

/// The digits of a point's coordinates as a pattern takes them, without decimals.
struct IdentifierDigits {
  std::string east;  ///< a number of fewer than 7 characters has the pattern's first two characters ahead of it
  std::string north;
};

/// Coordinates in metres; one beyond int32 counts as the nearest int32.
IdentifierDigits MakeIdentifierDigits(std::string_view pattern, double east, double north);

/// The identifier that the pattern gives. With a point number its last digits, led by zeros, stand from the first free
/// digit on, as many as there are free digits, and the identifier ends behind them; without one (null) free digits are
/// "0". A coordinate that is too short ends the identifier.
std::string MakePointIdentifier(std::string_view pattern, const IdentifierDigits& digits, const char* point_number);

/// Whether an identifier fits the pattern. What stands behind the pattern's end does not count.
bool FitsPointIdentifier(std::string_view identifier, std::string_view pattern, const IdentifierDigits& digits);

}  // namespace pktaus
