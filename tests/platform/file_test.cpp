#include "platform/file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "base/text.h"
#include "platform/system.h"
#include "tests/support/faulty_files.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace text::literals;
using platform::File;
using platform::OpenMode;

// Moves at most three bytes a call, and every second call is interrupted first.
class Stuttering : public support::FaultyFiles {
 public:
  Stuttering() : FaultyFiles([](int call, const std::string&) { return call % 2 == 0 ? EINTR : 0; }) {}
  std::int64_t Read(int file, void* data, std::size_t size) override {
    return FaultyFiles::Read(file, data, std::min<std::size_t>(size, 3));
  }
  std::int64_t WriteAt(int file, const void* data, std::size_t size, std::uint64_t offset) override {
    return FaultyFiles::WriteAt(file, data, std::min<std::size_t>(size, 3), offset);
  }
};

TEST(File, RepeatsShortAndInterruptedCalls) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a", "0123456789");
  const Stuttering files;
  File file;
  ASSERT_TRUE(file.Open(path, OpenMode::kReadWrite));
  char bytes[20];
  EXPECT_EQ(file.Read(bytes, sizeof bytes), 10);
  EXPECT_EQ(std::string(bytes, 10), "0123456789");
  EXPECT_TRUE(file.WriteAt("abcdefgh", 8, 1));
  EXPECT_EQ(support::BytesOf(path), "0abcdefgh9");
}

TEST(File, ListsAndDeletesByTheFormInsideAndOpensNoFolder) {
  const support::TempFolder folder;
  for (const char* name : {"16b.XML", "16a.xml", "größe.Xml", "notiz.txt", "Łódź.xml"}) folder.Write(name, "");
  std::filesystem::create_directory(folder.File("ordner.xml"));
  EXPECT_EQ(platform::ListFiles(folder.path(), "*.xml"),
            (std::vector<std::string>{"16a.xml", "16b.XML", "größe.Xml"_ansi}));
  EXPECT_FALSE(File().Open(folder.File("ordner.xml"), OpenMode::kRead));
  EXPECT_EQ(platform::LastSystemError(), EISDIR);
  for (int time = 0; time < 2; ++time) platform::DeleteIfThere(folder.path() + "/größe.Xml"_ansi);
  EXPECT_EQ(platform::LastSystemError(), EISDIR) << "as it was";
  for (const char* name : {"/größe.Xml"_ansi, "/ordner.xml"}) EXPECT_FALSE(platform::FileExists(folder.path() + name));
}

}  // namespace
