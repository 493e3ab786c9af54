// A project around one table, for work that goes through the host.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "korvo/host/project.h"
#include "store/point_table.h"

namespace pktaus {

/// A folder that holds one table as a project, and is open as one.
class BenchProject {
 public:
  explicit BenchProject(const char* table) {
    std::string pattern = (std::filesystem::temp_directory_path() / "pktaus_bench_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    folder_ = pattern;
    std::error_code failed;
    std::filesystem::create_symlink(std::filesystem::absolute(table), File("punkte.dbf"), failed);
    open_ = !failed && korvo::OpenProject(folder_).open;
    if (open_) columns_bind();
  }
  ~BenchProject() {
    korvo::CloseProject();
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
  }
  BenchProject(const BenchProject&) = delete;
  BenchProject& operator=(const BenchProject&) = delete;

  bool open() const { return open_; }
  std::string File(const char* name) const { return folder_ + "/" + name; }
  const std::string& folder() const { return folder_; }

 private:
  std::string folder_;
  bool open_ = false;
};

}  // namespace pktaus
