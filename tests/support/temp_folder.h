// A folder of its own for a test, gone with it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace support {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "pktaus_XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
    EXPECT_FALSE(path_.empty());
  }
  ~TempFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
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
  std::string path_;
};

/// All bytes of a file; empty where it cannot be read.
inline std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

}  // namespace support
