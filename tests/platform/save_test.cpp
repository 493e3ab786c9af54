#include "platform/save.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "platform/system.h"
#include "tests/support/faulty_files.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::FileSaver;
using support::BytesOf;
using support::FaultyFiles;

const std::string kOld(150'000, 'o');
const std::string kNew(200'000, 'n');

bool SaveAs(const std::string& path, const std::string& bytes) {
  FileSaver saver;
  // In pieces below and above the size of any buffer.
  const std::size_t head = std::min<std::size_t>(bytes.size(), 100);
  return saver.Open(path) && saver.Write(bytes.substr(0, head)) && saver.Write(bytes.substr(head)) && saver.Commit();
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  platform::RealFiles().List(folder, &names);
  return names;
}

struct Situation {
  const char* name;
  bool exists;
  bool in_place;
  const char* forbidden;  // a call that fails whenever it is made, with
  int error;
};

const Situation kSituations[] = {
    {"new file", false, false, "", 0},
    {"beside the old file", true, false, "", 0},
    {"the folder takes no file like the old one", true, true, "SetMode", EPERM},
    {"the folder lets nothing be replaced", true, true, "Rename", EBUSY},
};

// Every file call of a save fails once, and then together with all that follow it: afterwards the old file stands or
// the new one, as the answer says, and no other. Only bytes that are written in place can be lost to a fault.
TEST(FileSaver, LeavesOldOrNewFileAfterAnyFault) {
  for (const Situation& situation : kSituations) {
    for (const bool lasting : {false, true}) {
      if (situation.in_place && lasting) continue;
      bool reached = true;
      int overwritten = 0;
      for (int nth = 1; reached; ++nth) {
        const support::TempFolder folder;
        const support::TempFolder temp;
        setenv("TMPDIR", temp.path().c_str(), 1);
        const std::string path = folder.File("punkte.dbf");
        if (situation.exists) folder.Write("punkte.dbf", kOld);
        std::string failed = "no fault";
        bool saved = false;
        {
          FaultyFiles files([&](int call, const std::string& name) {
            if (call == nth) failed = name;
            if (call == nth || (lasting && call > nth)) return EIO;
            return name == situation.forbidden ? situation.error : 0;
          });
          saved = SaveAs(path, kNew);
          reached = files.calls() >= nth;
        }
        SCOPED_TRACE(std::string(situation.name) + (lasting ? ", lasting from " : ", once at ") + std::to_string(nth) +
                     " " + failed);
        const std::string stands = BytesOf(path);
        EXPECT_TRUE(saved || reached);
        if (!saved && situation.in_place && stands.front() == 'n') {
          ++overwritten;
        } else {
          EXPECT_TRUE(stands == (saved ? kNew : situation.exists ? kOld : ""));
        }
        unsetenv("TMPDIR");
        if (lasting || failed == "Remove") continue;  // the tidying itself does not work then
        EXPECT_EQ(NamesIn(folder.path()).size(), fs::exists(path) ? 1U : 0U);
        EXPECT_EQ(NamesIn(temp.path()).size(), 0U);
      }
      EXPECT_EQ(overwritten > 0, situation.in_place);
    }
  }
}

TEST(FileSaver, DropsWhatIsNotCommitted) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.ini", kOld);
  {
    FileSaver saver;
    ASSERT_TRUE(saver.Open(path));
    EXPECT_TRUE(saver.Write(kNew));
  }
  EXPECT_EQ(BytesOf(path), kOld);
  EXPECT_EQ(NamesIn(folder.path()).size(), 1U);
}

TEST(FileSaver, KeepsModeAndOwnerAndFollowsLinks) {
  const support::TempFolder folder;
  const std::string path = folder.Write("ziel", kOld);
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  const uid_t owner = geteuid() == 0 ? 4711 : geteuid();
  ASSERT_EQ(chown(path.c_str(), owner, getegid()), 0);
  fs::create_directory(folder.File("ordner"));
  fs::create_symlink("../ziel", folder.File("ordner/link"));
  fs::create_symlink("ordner/link", folder.File("link"));
  EXPECT_TRUE(SaveAs(folder.File("link"), kNew));
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  EXPECT_TRUE(fs::is_symlink(folder.File("ordner/link")));
  struct stat facts {};
  ASSERT_EQ(lstat(path.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode, S_IFREG | 0640U);
  EXPECT_EQ(facts.st_uid, owner);
  EXPECT_EQ(BytesOf(path), kNew);
}

TEST(FileSaver, MakesNewFilesAsTheUserWouldAndWhereALinkLeads) {
  const support::TempFolder folder;
  fs::create_symlink("neu", folder.File("link"));
  const mode_t before = umask(027);
  EXPECT_TRUE(SaveAs(folder.File("link"), ""));
  umask(before);
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  struct stat facts {};
  ASSERT_EQ(lstat(folder.File("neu").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode, S_IFREG | 0640U);
  EXPECT_EQ(facts.st_size, 0);
  const std::string longest(255, 'x');
  EXPECT_TRUE(SaveAs(folder.File(longest), kNew));
  EXPECT_EQ(BytesOf(folder.File(longest)), kNew);
}

TEST(FileSaver, RefusesWhatIsNoFileToWrite) {
  const support::TempFolder folder;
  fs::create_directory(folder.File("ordner"));
  fs::create_symlink("kreis", folder.File("kreis"));
  ASSERT_EQ(mkfifo(folder.File("rohr").c_str(), 0600), 0);
  const struct {
    const char* name;
    int error;
  } kTargets[] = {{"ordner", EISDIR}, {"rohr", EINVAL}, {"kreis", ELOOP}, {"fehlt/a", ENOENT}, {"ordner/", EISDIR}};
  for (const auto& target : kTargets) {
    FileSaver saver;
    EXPECT_FALSE(saver.Open(folder.File(target.name))) << target.name;
    EXPECT_EQ(platform::LastSystemError(), target.error) << target.name;
    EXPECT_FALSE(saver.Write(kNew));
    EXPECT_FALSE(saver.Commit());
  }
  EXPECT_FALSE(FileSaver().Open(""));
  EXPECT_FALSE(FileSaver().Open(std::string_view("/tmp/a\0b", 8)));
  EXPECT_EQ(NamesIn(folder.path()).size(), 3U);
}

TEST(FileSaver, SweepsLeftoversOfDeadRunsAlone) {
  const support::TempFolder folder;
  folder.Write("a.dbf", kOld);
  const std::string kDead = ".a.dbf.4711-0.pktaus-neu";
  const std::string kStay[] = {".a.dbf.4711-1.pktaus-neu",  // held by a run that lives
                               ".a.dbf.meine.pktaus-neu", ".a.dbf.4711-0.pktaus-neu.sich", ".b.dbf.4711-0.pktaus-neu",
                               "a.dbf.4711-0.pktaus-neu"};
  folder.Write(kDead, "x");
  for (const std::string& name : kStay) folder.Write(name, "x");
  const int live = open(folder.File(kStay[0]).c_str(), O_RDWR);
  ASSERT_EQ(flock(live, LOCK_EX), 0);
  EXPECT_TRUE(SaveAs(folder.File("a.dbf"), kNew));
  close(live);
  EXPECT_FALSE(fs::exists(folder.File(kDead)));
  for (const std::string& name : kStay) EXPECT_TRUE(fs::exists(folder.File(name))) << name;
  EXPECT_EQ(NamesIn(folder.path()).size(), 1 + std::size(kStay));
}

TEST(FileSaver, LeavesEachOtherAlone) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", kOld);
  FileSaver first;
  ASSERT_TRUE(first.Open(path));
  EXPECT_TRUE(SaveAs(path, kNew));  // sweeps, and must not take the first one's file
  EXPECT_TRUE(first.Write("erste"));
  EXPECT_TRUE(first.Commit());
  EXPECT_EQ(BytesOf(path), "erste");
}

// As on a network drive: the lock keeps everybody out but the opening that holds it, and that is all who hold a copy.
class LocksByOpening : public FaultyFiles {
 public:
  LocksByOpening() : FaultyFiles([](int, const std::string& name) { return name == "Rename" ? EACCES : 0; }) {}
  bool TryLock(int file) override {
    holders_.insert(file);
    return FaultyFiles::Facts(file, &locked_);
  }
  int Duplicate(int file) override {
    const int copy = FaultyFiles::Duplicate(file);
    if (holders_.contains(file)) holders_.insert(copy);
    return copy;
  }
  std::int64_t Write(int file, const void* data, std::size_t size) override {
    return KeptOut(file) ? -1 : FaultyFiles::Write(file, data, size);
  }
  std::int64_t ReadAt(int file, void* data, std::size_t size, std::uint64_t offset) override {
    return KeptOut(file) ? -1 : FaultyFiles::ReadAt(file, data, size, offset);
  }
  bool Close(int file) override {
    holders_.erase(file);
    return FaultyFiles::Close(file);
  }

 private:
  bool KeptOut(int file) {
    platform::FileFacts facts;
    if (holders_.empty() || holders_.contains(file) || !FaultyFiles::Facts(file, &facts)) return false;
    errno = EACCES;
    return facts.serial == locked_.serial;
  }

  std::set<int> holders_;
  platform::FileFacts locked_;
};

TEST(FileSaver, IsNotKeptOutByItsOwnLock) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", kOld);
  const LocksByOpening files;
  EXPECT_TRUE(SaveAs(path, kNew));
  EXPECT_EQ(BytesOf(path), kNew);
}

// Runs `work` as a user without rights and gives what it gave.
int AsNobody(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    const bool dropped = setgid(65534) == 0 && setuid(65534) == 0;
    _exit(dropped ? work() : 99);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(FileSaver, WritesInPlaceWhereOnlyTheFileMayBeWritten) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to play another user";
  const support::TempFolder folder;
  chmod(folder.path().c_str(), 0755);
  const struct {
    const char* name;
    uid_t owner;
    mode_t mode;
    bool saved;
  } kCases[] = {{"eigene", 65534, 0644, true}, {"fremde", 0, 0644, false}, {"schreibgeschützt", 65534, 0444, false}};
  for (const auto& one : kCases) {
    for (const std::string& bytes : {kNew, std::string("kurz")}) {
      const std::string path = folder.Write("datei", kOld);
      ASSERT_EQ(chown(path.c_str(), one.owner, 0), 0);
      ASSERT_EQ(chmod(path.c_str(), one.mode), 0);
      EXPECT_EQ(AsNobody([&] { return SaveAs(path, bytes) ? 1 : 0; }), one.saved ? 1 : 0) << one.name;
      EXPECT_TRUE(BytesOf(path) == (one.saved ? bytes : kOld)) << one.name;
      EXPECT_EQ(NamesIn(folder.path()).size(), 1U);
      fs::remove(path);
    }
  }
}

}  // namespace
