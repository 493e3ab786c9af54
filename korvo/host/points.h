// The points of the open point table, for front ends.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvo/dbase/table.h"

struct HostPoint;

namespace korvo {

/// Number of records of the open point table, deleted ones included; 0 where none is open.
std::int32_t PointRecords();

/// Reads record `number` (from 1) into a cleared `point`. False for a deleted record, one outside the table, one that
/// cannot be read and one whose point number has more characters than the host's record holds: cut, it would be
/// another point's number.
bool ReadPoint(std::int32_t number, HostPoint* point);

/// Columns of the open point table; empty where none is open.
const std::vector<Column>& PointTableColumns();

/// Bytes of a record, flag of deletion first, valid until the next read. False for what ReadPoint refuses.
bool ReadPointBytes(std::int32_t number, std::string_view* record);

/// Record number of the first point of this number, blanks in front left aside where nothing fits exactly; 0 for none.
std::int32_t FindPoint(std::string_view point_number, HostPoint* point);

/// Record number of the point nearest to a place; 0 in a table without points.
std::int32_t NearestPoint(double east, double north, HostPoint* point);

/// Names and values of all columns of a record, padding removed.
std::vector<std::pair<std::string, std::string>> PointColumns(std::int32_t number);

}  // namespace korvo
