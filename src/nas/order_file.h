// NAS file of an order: every point of a list inserted, replaced or deleted in a copy of the state's template.
#pragma once

#include <cstdint>
#include <string>

#include "store/point_record.h"

namespace pktaus {

/// Writes the points of the list (null for none; linked by `next`, not owned; `objid` changes) into a copy of the
/// template `header_name`, which lies beside the library where it names no drive. Stops behind the point at which the
/// count exceeds `limit`. Gives the message for the user: "Erfolgreich: ..." or "Fehler: ...".
std::string WriteOrderFile(const std::string& output_path, const std::string& header_name, PointRecord* points,
                           std::int32_t limit, const std::string& organisation, const std::string& land);

/// The path of the original NAS file in the settings; false, with a box, where none is set.
bool GetOriginalFile(std::string* path);

}  // namespace pktaus
