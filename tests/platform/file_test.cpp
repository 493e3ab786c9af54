#include "platform/file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST(File, OpensNoFolderAndWaitsAtNoPipe) {
  const support::TempFolder folder;
  ASSERT_EQ(mkfifo(folder.File("rohr").c_str(), 0600), 0);
  File file;
  EXPECT_FALSE(file.Open(folder.path(), OpenMode::kRead));
  EXPECT_EQ(platform::LastSystemError(), EISDIR);
  EXPECT_TRUE(file.Open(folder.File("rohr"), OpenMode::kRead));
  platform::FileFacts facts;
  EXPECT_TRUE(file.Facts(&facts));
  EXPECT_FALSE(facts.kind_file);
}

TEST(File, ListsFilesByPatternInTheFormInside) {
  const support::TempFolder folder;
  for (const char* name : {"16b.XML", "16a.xml", "größe.Xml", "notiz.txt", "Łódź.xml"}) folder.Write(name, "");
  std::filesystem::create_directory(folder.File("ordner.xml"));
  platform::SetLastSystemError(0);
  EXPECT_EQ(platform::ListFiles(folder.path(), "*.xml"),
            (std::vector<std::string>{"16a.xml", "16b.XML", "größe.Xml"_ansi}));
  EXPECT_TRUE(platform::ListFiles(folder.File("fehlt"), "*").empty());
  EXPECT_FALSE(platform::FileExists(folder.File("ordner.xml")));
  platform::DeleteIfThere(folder.path() + "/größe.Xml"_ansi);
  platform::DeleteIfThere(folder.path() + "/größe.Xml"_ansi);
  EXPECT_FALSE(platform::FileExists(folder.path() + "/größe.Xml"_ansi));
  EXPECT_EQ(platform::LastSystemError(), 0);
}

TEST(File, LocksOnce) {
  const support::TempFolder folder;
  File first;
  File second;
  ASSERT_TRUE(first.Open(folder.File("sperre"), OpenMode::kLockFile));
  ASSERT_TRUE(second.Open(folder.File("sperre"), OpenMode::kLockFile));
  EXPECT_TRUE(platform::Files().TryLock(first.handle()));
  EXPECT_FALSE(platform::Files().TryLock(second.handle()));
  first.Close();
  EXPECT_TRUE(platform::Files().TryLock(second.handle()));
  std::filesystem::create_symlink("sperre", folder.File("link"));
  EXPECT_FALSE(first.Open(folder.File("link"), OpenMode::kLockFile));
}

TEST(System, KnowsItsOwnPlaceAndTheTempFolder) {
  EXPECT_EQ(platform::OwnLibraryPath(), std::string(PKTAUS_BIN_DIR) + "/test_platform");
  setenv("TMPDIR", "/var/tmp", 1);
  EXPECT_EQ(platform::TempFolder(), "/var/tmp/");
  unsetenv("TMPDIR");
  EXPECT_EQ(platform::TempFolder(), "/tmp/");
}

TEST(System, TellsErrorsInWords) {
  EXPECT_EQ(platform::SystemErrorText(ENOENT), "Das System kann die angegebene Datei nicht finden.");
  EXPECT_EQ(platform::SystemErrorText(EIO), "Ein-/Ausgabefehler des Datenträgers."_ansi);
  EXPECT_FALSE(platform::SystemErrorText(EDOM).empty());
}

}  // namespace
