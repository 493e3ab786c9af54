// A project of the host's stand-in around one point table, open for a block.
#pragma once

#include "korvo/host/project.h"
#include "tests/support/table_file.h"

namespace support {

class OpenProject {
 public:
  explicit OpenProject(TableFile table) : table_(std::move(table)), path_(folder_.Write("punkte.dbf", table_.Bytes())) {
    const korvo::OpenedProject opened = korvo::OpenProject(folder_.path());
    EXPECT_TRUE(opened.open) << opened.refusal;
  }
  ~OpenProject() { korvo::CloseProject(); }

  /// Full width of a column on disk.
  std::string Field(std::size_t record, std::string_view column) const { return table_.FieldIn(path_, record, column); }

 private:
  TempFolder folder_;
  TableFile table_;
  std::string path_;
};

}  // namespace support
