#include "korvo/host/points.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "korvo/host/state.h"

namespace korvo {

namespace {

std::string_view TrimRight(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string_view TrimLeft(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return text.substr(first == std::string_view::npos ? text.size() : first);
}

/// False for a record that cannot be read and for a number without room in a point.
bool ReadRecord(std::int32_t number, std::string_view* record, std::string_view* pt_no) {
  Host& host = TheHost();
  Table& table = host.points.table;
  if (table.Read(number, record) != Table::Got::kRead) return false;
  *pt_no = TrimRight(table.Field(*record, host.pt_no));
  return pt_no->size() < sizeof HostPoint::pt_no;
}

}  // namespace

std::int32_t PointRecords() { return TheHost().points.table.count(); }

const std::vector<Column>& PointTableColumns() {
  static const std::vector<Column> none;
  const Table& table = TheHost().points.table;
  return table.IsOpen() ? table.columns() : none;
}

bool ReadPointBytes(std::int32_t number, std::string_view* record) {
  std::string_view pt_no;
  return ReadRecord(number, record, &pt_no);
}

bool ReadPoint(std::int32_t number, HostPoint* point) {
  const Host& host = TheHost();
  const Table& table = host.points.table;
  std::string_view record, pt_no;
  if (!ReadRecord(number, &record, &pt_no)) return false;
  *point = HostPoint{};
  pt_no.copy(point->pt_no, pt_no.size());
  point->east = ParseNumber(table.Field(record, host.east));
  point->north = ParseNumber(table.Field(record, host.north));
  point->elev = ParseNumber(table.Field(record, host.elev));
  return true;
}

std::int32_t FindPoint(std::string_view point_number, HostPoint* point) {
  std::int32_t without_blanks = 0;
  for (std::int32_t i = 1; i <= PointRecords(); ++i) {
    HostPoint found;
    if (!ReadPoint(i, &found)) continue;
    if (point_number == found.pt_no) {
      *point = found;
      return i;
    }
    if (without_blanks == 0 && TrimLeft(point_number) == TrimLeft(found.pt_no)) without_blanks = i;
  }
  if (without_blanks != 0 && !ReadPoint(without_blanks, point)) return 0;
  return without_blanks;
}

std::int32_t NearestPoint(double east, double north, HostPoint* point) {
  std::int32_t nearest = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::int32_t i = 1; i <= PointRecords(); ++i) {
    HostPoint candidate;
    if (!ReadPoint(i, &candidate)) continue;
    const double distance = std::hypot(candidate.east - east, candidate.north - north);
    if (distance >= least) continue;
    least = distance;
    nearest = i;
    *point = candidate;
  }
  return nearest;
}

std::vector<std::pair<std::string, std::string>> PointColumns(std::int32_t number) {
  Table& table = TheHost().points.table;
  std::vector<std::pair<std::string, std::string>> columns;
  std::string_view record;
  table.Read(number, &record);
  if (record.empty()) return columns;
  for (std::size_t i = 0; i < table.columns().size(); ++i) {
    const std::string_view value = TrimRight(table.Field(record, static_cast<int>(i)));
    const bool is_text = table.columns()[i].type == 'C';
    columns.emplace_back(table.columns()[i].name, is_text ? value : TrimLeft(value));
  }
  return columns;
}

}  // namespace korvo
