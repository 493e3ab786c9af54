#include "platform/save.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
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
  return saver.Open(path) && saver.Write(bytes.substr(0, 4)) && saver.Write(bytes.substr(4)) && saver.Commit();
}

std::string NamesIn(const support::TempFolder& folder) {
  std::string names;
  for (const auto& entry : fs::directory_iterator(folder.path())) names += entry.path().filename().string() + " ";
  return names;
}

// Every file call of a save fails once, and then together with all that follow it: afterwards the old file stands or
// the new one, as the answer says, and no other. Only bytes that are written in place can be lost to a fault.
TEST(FileSaver, LeavesOldOrNewFileAfterAnyFault) {
  const struct {
    const char* name;
    bool exists, lasting, in_place;
    const char* forbidden;  // a call that fails whenever it is made, with
    int error;
  } kSituations[] = {
      {"new file", false, false, false, "", 0},
      {"new file on a disk that goes away", false, true, false, "", 0},
      {"beside the old file", true, false, false, "", 0},
      {"beside the old file on a disk that goes away", true, true, false, "", 0},
      {"the folder takes no file like the old one", true, false, true, "SetMode", EPERM},
      {"the folder lets nothing be replaced", true, false, true, "Rename", EBUSY},
  };
  for (const auto& situation : kSituations) {
    const std::string bytes = situation.error == EPERM ? "kurz" : kNew;
    bool reached = true;
    int overwritten = 0;
    for (int nth = 1; reached; ++nth) {
      const support::TempFolder folder, temp;
      setenv("TMPDIR", temp.path().c_str(), 1);
      const std::string path = folder.File("punkte.dbf");
      if (situation.exists) folder.Write("punkte.dbf", kOld);
      std::string failed, calls;
      bool saved = false;
      {
        const FaultyFiles files([&](int call, const std::string& name) {
          calls += name + " ";
          if (call == nth) failed = name;
          if (call == nth || (situation.lasting && call > nth)) return EIO;
          return name == situation.forbidden ? situation.error : 0;
        });
        saved = SaveAs(path, bytes);
      }
      unsetenv("TMPDIR");
      reached = !failed.empty();
      SCOPED_TRACE(std::to_string(&situation - kSituations) + " " + std::to_string(nth) + " " + failed);
      const std::string stands = BytesOf(path);
      // On a network drive a lock keeps everybody out but the opening that holds it, and that is all who hold a copy.
      const bool opens_again = calls.find("Open", calls.find("TryLock")) != std::string::npos;
      EXPECT_TRUE(reached || (saved && (situation.error == EPERM || !opens_again))) << calls;
      const bool lost = !saved && situation.in_place && stands.front() != 'o';
      overwritten += lost ? 1 : 0;
      EXPECT_TRUE(lost || stands == (saved ? bytes : situation.exists ? kOld : ""));
      EXPECT_FALSE(saved && failed == "Sync");
      if (situation.lasting || failed == "Remove") continue;  // the tidying itself does not work then
      EXPECT_EQ(NamesIn(folder) + NamesIn(temp), fs::exists(path) ? "punkte.dbf " : "");
    }
    EXPECT_EQ(overwritten > 0, situation.in_place);
  }
}

TEST(FileSaver, KeepsModeAndOwnerFollowsLinksAndMakesNewFilesAsTheUserWould) {
  const support::TempFolder folder;
  const uid_t user = geteuid(), owner = user == 0 ? 4711 : user;
  ASSERT_EQ(chown(folder.Write("alt", kOld).c_str(), owner, getegid()), 0);
  ASSERT_EQ(chmod(folder.File("alt").c_str(), 0604), 0);
  const mode_t before = umask(027);
  for (const auto& [name, mode, uid] : {std::tuple("alt", 0604U, owner), std::tuple("neu", 0640U, user)}) {
    const std::string link = folder.File(std::string("link zu ") + name);
    fs::create_symlink(name, link);
    EXPECT_TRUE(SaveAs(link, kNew));
    EXPECT_TRUE(fs::is_symlink(link));
    struct stat facts {};
    ASSERT_EQ(lstat(folder.File(name).c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode, S_IFREG | mode);
    EXPECT_EQ(facts.st_uid, uid);
  }
  umask(before);
  const std::string longest(255, 'x');
  EXPECT_TRUE(SaveAs(folder.File(longest), kNew));
  EXPECT_EQ(BytesOf(folder.File(longest)), kNew);
}

TEST(FileSaver, RefusesWhatIsNoFileToWrite) {
  const support::TempFolder folder;
  fs::create_directory(folder.File("ordner"));
  fs::create_symlink("kreis", folder.File("kreis"));
  for (const char* name : {"ordner", "kreis", "fehlt/a", "ordner/"})
    EXPECT_FALSE(SaveAs(folder.File(name), kNew)) << name;
  const std::string locked = folder.Write("schreibgeschützt", kOld);
  bool asked = false;
  const FaultyFiles files([&](int, const std::string& call) {
    return call == "Open" && !std::exchange(asked, true) ? EACCES : 0;  // of the target, which comes first
  });
  EXPECT_FALSE(SaveAs(locked, kNew));
  EXPECT_EQ(BytesOf(locked), kOld);
}

TEST(FileSaver, SweepsLeftoversOfDeadRunsAloneAndDropsWhatIsNotCommitted) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", kOld), dead = ".a.dbf.4711-0.pktaus-neu";
  const std::vector<std::string> stay = {".a.dbf.meine.pktaus-neu", ".a.dbf.4711-0.pktaus-neu.sich",
                                         ".b.dbf.4711-0.pktaus-neu", "a.dbf.4711-0.pktaus-neu"};
  for (const std::string& name : stay) folder.Write(name, "x");
  folder.Write(dead, "x");
  const std::string old = folder.Write(".alt.xml.4711-0.pktaus-neu", "x");  // of another target
  fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(2));
  {
    FileSaver dropped, first;
    ASSERT_TRUE(dropped.Open(path) && dropped.Write(kNew) && first.Open(path));
    EXPECT_TRUE(SaveAs(path, kNew));  // sweeps, and must not take what runs that live have open
    EXPECT_TRUE(first.Write("erste") && first.Commit());
  }
  EXPECT_EQ(BytesOf(path), "erste");
  EXPECT_FALSE(fs::exists(folder.File(dead)) || fs::exists(old));
  for (const std::string& name : stay) EXPECT_TRUE(fs::exists(folder.File(name))) << name;
}

// The default of the signal for a file that grows too large is the end of the process.
TEST(FileSaver, ForAFileThatMayNotGrowFailsTheSaveAndEndsNothing) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.txt", "old");
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit{8192, 8192};
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_DFL);
    const bool stands = SaveAs(path, kNew);
    const int error = platform::LastSystemError();
    sigset_t pending;
    sigpending(&pending);
    _exit(!stands && error == EFBIG && sigismember(&pending, SIGXFSZ) == 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_EQ(BytesOf(path), "old");
  EXPECT_EQ(NamesIn(folder), "a.txt ");
}

}  // namespace
