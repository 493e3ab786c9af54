// dBase tables for tests, written and looked into byte by byte, without our own engine.
#pragma once

#include <map>
#include <vector>

#include "tests/support/temp_folder.h"

namespace support {

struct TableColumn {
  std::string name;
  char type = 'C';
  std::size_t width = 0, decimals = 0;
};

/// The host's own columns of a point table.
inline std::vector<TableColumn> HostColumns() {
  return {{"PT_NO", 'C', 15, 0}, {"EAST", 'N', 14, 4}, {"NORTH", 'N', 14, 4}, {"ELEV", 'N', 10, 5}};
}

/// Those and the columns of attributes, GMLID last.
inline std::vector<TableColumn> PointColumns() {
  std::vector<TableColumn> columns = HostColumns();
  columns.insert(
      columns.end(),
      {{"NE_OA", 'N', 2},  {"NE_ANTRAGN", 'C', 40}, {"NE_AUFTRAG", 'C', 40}, {"NE_PKN", 'C', 20},  {"NE_PO", 'N', 2},
       {"NE_ABM", 'N', 8}, {"NE_BZA", 'N', 8},      {"NE_ART", 'N', 8},      {"NE_ZST", 'N', 8},   {"NE_KST", 'N', 8},
       {"NE_DAT", 'N', 8}, {"NE_HER", 'N', 8},      {"NE_GST", 'N', 8},      {"NE_VTW", 'N', 8},   {"NE_LZV", 'N', 8},
       {"NE_HIN", 'N', 8}, {"NE_OBGID", 'C', 20},   {"NE_AKTION", 'N', 8},   {"NE_WEPO", 'C', 80}, {"GMLID", 'C', 20}});
  return columns;
}

class TableFile {
 public:
  using Values = std::map<std::string, std::string>;  ///< text of a column; the others are blank

  explicit TableFile(std::vector<TableColumn> columns) : columns_(std::move(columns)) {
    for (const TableColumn& column : columns_) record_size_ += column.width;
  }

  void Add(Values values, bool deleted = false) {
    records_ += deleted ? '*' : ' ';
    for (const TableColumn& column : columns_) {
      const std::string text = values[column.name].substr(0, column.width);
      const std::string padding(column.width - text.size(), ' ');
      records_ += column.type == 'N' ? padding + text : text + padding;
    }
  }

  std::string Bytes() const {
    const std::size_t count = records_.size() / record_size_;
    std::string bytes = "\x03\x7e\x03\x02" + TwoBytes(count) + TwoBytes(count >> 16) + TwoBytes(HeaderSize());
    bytes += TwoBytes(record_size_) + std::string(20, '\0');
    for (const TableColumn& column : columns_) {
      bytes += column.name + std::string(11 - column.name.size(), '\0') + column.type + std::string(4, '\0');
      bytes += TwoBytes(column.width + (column.decimals << 8)) + std::string(14, '\0');
    }
    return bytes + "\r" + records_ + "\x1a";
  }

  /// What stands in a file of this layout: full width of a column in a record, from 1.
  std::string FieldIn(const std::string& path, std::size_t record, std::string_view name) const {
    std::size_t column = 0, place = HeaderSize() + (record - 1) * record_size_ + 1;
    while (columns_.at(column).name != name) place += columns_[column++].width;
    return BytesOf(path).substr(place, columns_[column].width);
  }

 private:
  std::size_t HeaderSize() const { return 33 + 32 * columns_.size(); }
  static std::string TwoBytes(std::size_t value) { return {static_cast<char>(value), static_cast<char>(value >> 8)}; }

  std::vector<TableColumn> columns_;
  std::size_t record_size_ = 1;
  std::string records_;
};

}  // namespace support
