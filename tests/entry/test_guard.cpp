#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "base/failure.h"
#include "entry/guard.h"
#include "platform/system.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

class Desktop : public support::ScriptedDesktop {
 public:
  int ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window parent) override {
    on_box();
    return ScriptedDesktop::ShowBox(text, title, flags, parent);
  }
  std::function<void()> on_box = [] {};
};

class Guard : public testing::Test {
 protected:
  Guard() { setenv("TMPDIR", folder.path().c_str(), 1); }
  ~Guard() override { unsetenv("TMPDIR"); }

  support::TempFolder folder;
  const std::string log = folder.File("strassedb.log");
  Desktop desktop;
};

void ThrowDao() { throw static_cast<CDaoException*>(new CDaoException("gesperrt", 3260, "Leser", "Punkte")); }

TEST_F(Guard, EachClauseHasItsBoxAndTheLogGrows) {
  const std::string long_text(1500, 'x');
  const struct {
    std::function<void()> work;
    std::string title;
    std::string text;
  } kCases[] = {
      {ThrowDao, "CDaoException a.cpp:7", "CDaoException:\n\tgesperrt\n\t3260\n\tLeser\n\tPunkte"},
      {[&] { throw new CException(long_text); }, "CException a.cpp:7",
       "CException:\n\t" + std::string(1000, 'x') + "\n"},
      {[] { throw CException("kein Speicher"); }, "Fehler Aufgetreten!", "CException:\n\tkein Speicher\n"},
      {[] { throw(platform::SetLastSystemError(EACCES), 1); }, "Fehler Aufgetreten", "a.cpp:7:Zugriff verweigert."},
      {[] { throw std::exception(); }, "Fehler Aufgetreten!", "a.cpp:7:Unbekannter Fehler"},
      {[] { __builtin_trap(); }, "Fehler Aufgetreten!", "a.cpp:7:Unbekannter Fehler"},
      {ThrowDao, "CDaoException a.cpp:7", "CDaoException:\n\tgesperrt\n\t3260\n\tLeser\n\tPunkte"},
  };
  for (const auto& c : kCases) {
    platform::SetLastSystemError(ENOENT);  // noise from before
    RunGuarded(c.work, "a.cpp", 7);
    ASSERT_FALSE(desktop.boxes.empty());
    EXPECT_EQ(desktop.boxes.back(), (support::ScriptedDesktop::Box{c.text, c.title, 0x40}))
        << desktop.boxes.back().text;
  }
  RunGuarded([] {}, "a.cpp", 7);
  EXPECT_EQ(desktop.boxes.size(), std::size(kCases));
  const std::string once = "CDaoException a.cpp:7\r\nCDaoException:\r\n\tgesperrt\r\n\t3260\r\n\tLeser\r\n\tPunkte\r\n";
  EXPECT_EQ(support::BytesOf(log), once + once);
}

TEST_F(Guard, ComesBackWhereNoLogAndNoBoxIsToBeHad) {
  const std::string victim = folder.Write("opfer", "wichtig");
  ASSERT_EQ(symlink(victim.c_str(), log.c_str()), 0);
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(support::BytesOf(victim), "wichtig");
  EXPECT_EQ(desktop.boxes.size(), 1U);
  const support::FaultLeaks leaks;
  desktop.on_box = [] { throw 1; };
  RunGuarded(ThrowDao, "a.cpp", 7);
  desktop.on_box = [] { __builtin_trap(); };
  RunGuarded(ThrowDao, "a.cpp", 7);
}

}  // namespace
}  // namespace pktaus
