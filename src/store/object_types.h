// The seven object types that a point's `oa` counts.
#pragma once

#include <string_view>

namespace pktaus {

inline constexpr int kObjectTypeCount = 7;
inline constexpr int kObjectTypeSize = 40;

/// Names without "AX_"; `oa` is the row. A catalogue that is loaded rewrites them, so a stored `oa` means what the
/// catalogue in force says.
extern char object_types[kObjectTypeCount][kObjectTypeSize];

/// The first row that equals the name, or the name without its first three characters ("AX_"); -1 where there is none.
int FindObjectTypeRow(std::string_view name);

}  // namespace pktaus
