#include "catalog/number.h"

#include <algorithm>
#include <limits>

namespace pktaus {

std::int32_t ReadNumber(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  std::int64_t value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') break;
    value = std::min<std::int64_t>(value * 10 + (digit - '0'), std::int64_t{Limits::max()} + 1);
  }
  return static_cast<std::int32_t>(negative ? -value : std::min<std::int64_t>(value, Limits::max()));
}

}  // namespace pktaus
