#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "base/failure.h"
#include "base/text.h"
#include "entry/guard.h"
#include "platform/system.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

using namespace text::literals;

namespace pktaus {
namespace {

int alive = 0;

template <class Base>
struct Counted : Base {
  using Base::Base;
  Counted(const Counted&) = delete;
  ~Counted() override { --alive; }
};

template <class Base, class... Values>
void ThrowPointer(Values... values) {
  ++alive;
  throw static_cast<Base*>(new Counted<Base>(values...));
}

/// Boxes as lines, and whether a thrown pointer is still alive while its box stands.
class Desktop : public support::ScriptedDesktop {
 public:
  int ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window parent) override {
    alive_at_box = alive;
    on_box();
    return ScriptedDesktop::ShowBox(text, title, flags, parent);
  }
  int alive_at_box = 0;
  std::function<void()> on_box = [] {};
};

class Guard : public testing::Test {
 protected:
  Guard() {
    const char* before = getenv("TMPDIR");
    if (before != nullptr) tmpdir_ = before;
    setenv("TMPDIR", folder.path().c_str(), 1);
  }
  ~Guard() override { tmpdir_.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", tmpdir_.c_str(), 1); }
  std::string LogText() const { return support::BytesOf(folder.File("strassedb.log")); }

  support::TempFolder folder;
  Desktop desktop;

 private:
  std::string tmpdir_;
};

void ThrowDao() { ThrowPointer<CDaoException>("Satz gesperrt", 3260, "Ein anderer liest", "Punkte"); }

TEST_F(Guard, EachClauseHasItsBox) {
  const std::string long_text(1500, 'x');
  const struct {
    const char* name;
    std::function<void()> work;
    std::string title;
    std::string text;
    int alive_at_box;
    std::string log;
  } kCases[] = {
      {"database", ThrowDao, "CDaoException a.cpp:7",
       "CDaoException:\n\tSatz gesperrt\n\t3260\n\tEin anderer liest\n\tPunkte", 1,
       "CDaoException a.cpp:7\r\nCDaoException:\r\n\tSatz gesperrt\r\n\t3260\r\n\tEin anderer liest\r\n\tPunkte\r\n"},
      {"pointer", [] { ThrowPointer<CException>("kein Speicher"); }, "CException a.cpp:7",
       "CException:\n\tkein Speicher\n", 1, ""},
      {"pointer with a long text", [&] { ThrowPointer<CException>(long_text); }, "CException a.cpp:7",
       "CException:\n\t" + std::string(1000, 'x') + "\n", 1, ""},
      {"value", [] { throw CException("kein Speicher"); }, "Fehler Aufgetreten!", "CException:\n\tkein Speicher\n", 0,
       ""},
      {"system error",
       [] {
         platform::SetLastSystemError(EACCES);
         throw 1;
       },
       "Fehler Aufgetreten", "a.cpp:7:Zugriff verweigert.", 0, ""},
      {"unknown", [] { throw std::exception(); }, "Fehler Aufgetreten!", "a.cpp:7:Unbekannter Fehler", 0, ""},
      {"machine fault", [] { __builtin_trap(); }, "Fehler Aufgetreten!", "a.cpp:7:Unbekannter Fehler", 0, ""},
  };
  for (const auto& c : kCases) {
    unlink(folder.File("strassedb.log").c_str());
    platform::SetLastSystemError(ENOENT);  // noise from before
    RunGuarded(c.work, "a.cpp", 7);
    const support::ScriptedDesktop::Box box{c.text, c.title, 0x40};
    ASSERT_EQ(desktop.boxes.size(), 1U) << c.name;
    EXPECT_EQ(desktop.boxes[0], box) << c.name << ": " << desktop.boxes[0].title << ": " << desktop.boxes[0].text;
    EXPECT_EQ(desktop.alive_at_box, c.alive_at_box) << c.name;
    EXPECT_EQ(alive, 0) << c.name;
    EXPECT_EQ(LogText(), c.log) << c.name;
    desktop.boxes.clear();
  }
}

TEST_F(Guard, NoFailureMeansNoBox) {
  RunGuarded([] {}, "a.cpp", 7);
  EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(Guard, TheLogGrows) {
  RunGuarded(ThrowDao, "a.cpp", 7);
  const std::string once = LogText();
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(LogText(), once + once);
}

TEST_F(Guard, ALinkInThePlaceOfTheLogIsNotFollowedAndTheBoxAppears) {
  const std::string victim = folder.Write("opfer", "wichtig");
  ASSERT_EQ(symlink(victim.c_str(), folder.File("strassedb.log").c_str()), 0);
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(support::BytesOf(victim), "wichtig");
  setenv("TMPDIR", "/nicht/da", 1);
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(desktop.boxes.size(), 2U);
}

TEST_F(Guard, ComesBackWhereNoBoxCanBeShown) {
  const support::FaultLeaks leaks;
  desktop.on_box = [] { throw 1; };
  RunGuarded(ThrowDao, "a.cpp", 7);
  EXPECT_EQ(alive, 0);
  desktop.on_box = [] { __builtin_trap(); };
  RunGuarded([] { throw 1; }, "a.cpp", 7);
  EXPECT_TRUE(desktop.boxes.empty());
}

}  // namespace
}  // namespace pktaus
