// A folder of its own for a test, gone with it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace support {

class TempFolder {
 public:
  TempFolder() { EXPECT_NE(mkdtemp(path_.data()), nullptr); }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string File(std::string_view name) const { return path_ + "/" + std::string(name); }
  /// Writes a file byte for byte; its path.
  std::string Write(std::string_view name, std::string_view bytes) const {
    std::ofstream(File(name), std::ios::binary) << bytes;
    return File(name);
  }

 private:
  std::string path_ = (std::filesystem::temp_directory_path() / "pktaus_XXXXXX").string();
};

/// All bytes of a file; empty where it cannot be read.
inline std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace support
