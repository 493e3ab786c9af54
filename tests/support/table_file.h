// dBase tables for tests, written and looked into byte by byte, without our own engine.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/temp_folder.h"

namespace support {

struct TableColumn {
  std::string name;
  char type = 'C';
  int width = 0;
  int decimals = 0;
};

/// The host's own columns of a point table.
inline std::vector<TableColumn> HostColumns() {
  return {{"PT_NO", 'C', 15, 0}, {"EAST", 'N', 14, 4}, {"NORTH", 'N', 14, 4}, {"ELEV", 'N', 10, 5}};
}

/// Those and the columns of attributes, GMLID last.
inline std::vector<TableColumn> PointColumns() {
  std::vector<TableColumn> columns = HostColumns();
  const std::vector<TableColumn> attributes = {
      {"NE_OA", 'N', 2},  {"NE_ANTRAGN", 'C', 40}, {"NE_AUFTRAG", 'C', 40}, {"NE_PKN", 'C', 20},  {"NE_PO", 'N', 2},
      {"NE_ABM", 'N', 8}, {"NE_BZA", 'N', 8},      {"NE_ART", 'N', 8},      {"NE_ZST", 'N', 8},   {"NE_KST", 'N', 8},
      {"NE_DAT", 'N', 8}, {"NE_HER", 'N', 8},      {"NE_GST", 'N', 8},      {"NE_VTW", 'N', 8},   {"NE_LZV", 'N', 8},
      {"NE_HIN", 'N', 8}, {"NE_OBGID", 'C', 20},   {"NE_AKTION", 'N', 8},   {"NE_WEPO", 'C', 80}, {"GMLID", 'C', 20},
  };
  columns.insert(columns.end(), attributes.begin(), attributes.end());
  return columns;
}

class TableFile {
 public:
  using Values = std::map<std::string, std::string>;  ///< text of a column; the others are blank

  explicit TableFile(std::vector<TableColumn> columns) : columns_(std::move(columns)) {}

  void Add(const Values& values, bool deleted = false) {
    std::string record = deleted ? "*" : " ";
    for (const TableColumn& column : columns_) {
      const auto found = values.find(column.name);
      std::string text = found == values.end() ? "" : found->second;
      text.resize(text.size() < Width(column) ? text.size() : Width(column));
      const std::string padding(Width(column) - text.size(), ' ');
      record += column.type == 'N' ? padding + text : text + padding;
    }
    records_ += record;
    ++count_;
  }

  std::string Bytes() const {
    std::string bytes("\x03\x7e\x03\x02", 4);
    Number(&bytes, count_, 4);
    Number(&bytes, HeaderSize(), 2);
    Number(&bytes, RecordSize(), 2);
    bytes.append(20, '\0');
    for (const TableColumn& column : columns_) {
      std::string name = column.name;
      name.resize(11, '\0');
      bytes += name + column.type + std::string(4, '\0');
      Number(&bytes, Width(column), 1);
      Number(&bytes, static_cast<std::size_t>(column.decimals), 1);
      bytes.append(14, '\0');
    }
    return bytes + "\r" + records_ + "\x1a";
  }

  /// What stands in a file of this layout: full width of a column in a record, from 1.
  std::string FieldIn(const std::string& path, std::size_t record, std::string_view name) const {
    std::size_t place = HeaderSize() + (record - 1) * RecordSize() + 1;
    for (const TableColumn& column : columns_) {
      if (column.name == name) return BytesOf(path).substr(place, Width(column));
      place += Width(column);
    }
    ADD_FAILURE() << "no column " << name;
    return {};
  }

 private:
  static std::size_t Width(const TableColumn& column) { return static_cast<std::size_t>(column.width); }
  std::size_t HeaderSize() const { return 33 + 32 * columns_.size(); }
  std::size_t RecordSize() const {
    std::size_t size = 1;
    for (const TableColumn& column : columns_) size += Width(column);
    return size;
  }
  static void Number(std::string* bytes, std::size_t value, int size) {
    for (int i = 0; i < size; ++i) bytes->push_back(static_cast<char>(value >> (8 * i)));
  }

  std::vector<TableColumn> columns_;
  std::string records_;
  std::size_t count_ = 0;
};

}  // namespace support
