// The host's point table while the menu runs: points by number or identifier, and the walk over all of them.
//
// Every operation selects the table anew and walks its record numbers upwards; there is no other access path. None
// reports a failure of its own; a text that does not fit its field is cut and reported by my_strcpy. A host without a
// point table counts as one with an empty table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "store/point_record.h"

namespace pktaus {

/// Looks up the columns. References stay valid until the next call; a column that the table lacks reads as blank.
void columns_bind();

/// Names of the attribute columns that the table lacks, with commas between them; empty for none.
std::string columns_missing();

/// Why nothing may be stored in the table, for the surveyor; empty (the start) where everything may. While there is a
/// reason, every operation that would store leaves the table alone.
const std::string& point_refusal();
void point_refuse(std::string why);

/// Number of records, deleted ones included.
std::int32_t point_count();

/// Reads number and coordinates (metres) of the record `number`, from 1. 1 read; 0 the record cannot be read, outputs
/// untouched. A point number that does not fit `size` bytes is cut and reported.
int point_read_at(std::int32_t number, double* east, double* north, double* elev, char* point_number, std::size_t size);

/// Reads the first point with this number: 0 it has attributes, 1 it has none (the empty record), -1 no such point and
/// `record` untouched. `objid`, `bundesland` and `next` stay as they were.
int point_read(const char* point_number, PointRecord* record);

/// Reads many points in one walk, each as point_read would for a record of zero bytes. Visits those that the table has,
/// in the table's order, with the position of their number in `point_numbers`; the record lives for the visit only.
void point_read_all(const std::vector<std::string>& point_numbers,
                    const std::function<void(std::size_t position, const PointRecord& record)>& visit);

/// Cuts `auftrag` and `antragn` of the record to 39 characters, then stores it with the first point of this number; no
/// such point, nothing is stored. Empty `gmlid` and `wepo` leave what the table holds.
void point_write(const char* point_number, PointRecord* record);

/// Takes the attributes from the first point with this number: NE_PO becomes 0, both order numbers become empty, all
/// other columns keep their values.
void point_remove(const char* point_number);

/// The same for many points, in one walk.
void point_remove_all(const std::vector<std::string>& point_numbers);

/// Room for a GMLID of the table.
inline constexpr std::size_t kGidSize = 84;

/// What an import of cadastre data has left beside a point.
struct ImportedData {
  char pkn_abm_bza[81];  ///< PKN_ABM_BZA: values with commas between them
  std::string nastable;  ///< NASTABLE: the object type's name with its padding
  char gid[kGidSize];    ///< GMLID up to a byte of 0x80 or above, without blanks
};

/// Reads what an import has left beside the first point with this number. False where there is no such point, no column
/// for it, or no comma in PKN_ABM_BZA.
bool point_read_imported(const char* point_number, ImportedData* data);

/// Finds the first point whose GMLID, up to a byte of 0x80 or above and without blanks, equals `identifier`: 1 found,
/// 0 not, outputs untouched.
int point_find_by_gid(const char* identifier, char* point_number, double* east, double* north, std::size_t size);

/// A point's order numbers without their padding, at most 43 characters each; a longer one is cut and reported. Texts
/// live for the visit only.
struct OrderRow {
  const char* point_number;
  const char* auftrag;
  const char* antragn;
  double east;   ///< metres
  double north;  ///< metres
};

/// Visits all readable records in the table's order.
void point_walk_orders(const std::function<void(const OrderRow&)>& visit);

/// Takes the padding off a column's text, in place. A text that begins with a byte of 0x80 or above becomes empty.
void field_trim(char* text);

}  // namespace pktaus
