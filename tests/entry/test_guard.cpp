#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "base/failure.h"
#include "entry/guard.h"
#include "platform/system.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

void ThrowDao() { throw static_cast<CDaoException*>(new CDaoException("gesperrt", 3260, "Leser", "Punkte")); }

TEST(Guard, EachClauseHasItsBoxAndTheLogGrowsWhereItIsAFile) {
  const support::TempFolder folder;
  setenv("TMPDIR", folder.path().c_str(), 1);
  support::ScriptedDesktop desktop;
  const struct {
    std::function<void()> work;
    std::string title, text;
  } kCases[] = {
      {ThrowDao, "CDaoException a.cpp:7", "CDaoException:\n\tgesperrt\n\t3260\n\tLeser\n\tPunkte"},
      {[] { throw new CException(std::string(1500, 'x')); }, "CException a.cpp:7",
       "CException:\n\t" + std::string(1000, 'x') + "\n"},
      {[] { throw CException("kein Speicher"); }, "Fehler Aufgetreten!", "CException:\n\tkein Speicher\n"},
      {[] { throw(platform::SetLastSystemError(EACCES), 1); }, "Fehler Aufgetreten", "a.cpp:7:Zugriff verweigert."},
      {[] { __builtin_trap(); }, "Fehler Aufgetreten!", "a.cpp:7:Unbekannter Fehler"},
      {ThrowDao, "CDaoException a.cpp:7", "CDaoException:\n\tgesperrt\n\t3260\n\tLeser\n\tPunkte"},
  };
  for (const auto& c : kCases) {
    platform::SetLastSystemError(ENOENT);  // noise from before
    RunGuarded(c.work, "a.cpp", 7);
    EXPECT_EQ(desktop.boxes.back(), (support::ScriptedDesktop::Box{c.text, c.title, 0x40}));
  }
  const std::string once = "CDaoException a.cpp:7\r\nCDaoException:\r\n\tgesperrt\r\n\t3260\r\n\tLeser\r\n\tPunkte\r\n";
  EXPECT_EQ(support::BytesOf(folder.File("strassedb.log")), once + once);

  const std::string victim = folder.Write("opfer", "wichtig");
  unlink(folder.File("strassedb.log").c_str());
  ASSERT_EQ(symlink(victim.c_str(), folder.File("strassedb.log").c_str()), 0);
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(support::BytesOf(victim), "wichtig");
  unsetenv("TMPDIR");
}

}  // namespace
}  // namespace pktaus
