// The small values of a NAS file: identifiers, times and the reason of a change.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pktaus {

class CTreeDocument;
class CTreeNode;

/// The state whose offices take some members in another form.
inline constexpr std::string_view kThuringia = "16";

/// Begins every identifier of a new object: the cadastre replaces such a provisional identifier by its own.
extern const std::string id_prefix;

/// Numbers of the next new object and of the next gml:Point. Each file starts both at 1, so identifiers are unique
/// within one file only.
extern std::int32_t id_counter;
extern std::int32_t point_counter;

/// A new identifier of 16 characters, such as DE_000000000000A; `id_counter` rises by 1.
std::string NewObjectId();

/// `number` (0 or above) in base 36, digits 0 to 9 and A to Z, without leading zeros.
std::string ToBase36(std::int32_t number);

/// The present local time, "YYYY-MM-DDThh:mm:ssZ". The Z stands there although the time is local.
std::string NowStamp();

/// The local day of a moment (seconds since 1970-01-01T00:00Z), "YYYY-MM-DD".
std::string DayText(std::int64_t seconds);

/// The element `anlass` in the form that the federal state ("16", ...) takes; not linked yet.
CTreeNode* NewAnlassNode(CTreeDocument* document, std::string_view land);

}  // namespace pktaus
