#include <gtest/gtest.h>

#include <functional>

#include "platform/fault.h"
#include "platform/system.h"
#include "toolkit/desktop.h"
#include "toolkit/dialog.h"

namespace toolkit {
namespace {

/// One control of each kind, and a note of every rule that ran.
class Sample : public Dialog {
 public:
  Sample() : Dialog(1, "Probe") {
    for (Control* control : std::initializer_list<Control*>{&edit, &fixed, &button, &box, &options, &day, &day_off,
                                                            &choice, &rows, &pages, &on_first, &on_second}) {
      Add(control);
    }
    choice.Fill({{"a", 1, ""}, {"b", 2, ""}});
    rows.Add({"r", 1, false});
    rows.Add({"s", 2, false});
    on_second.pages_id = on_first.pages_id = pages.id();
    on_second.page = 1;
  }

  TextField edit{10, "Feld"}, fixed{11, "", TextField::Form::kReadOnly}, on_first{21, ""}, on_second{21, ""};
  Button button{13, "Los"};
  TickBox box{14, "An"};
  RadioGroup options{15, "", {"x", "y"}, {151, 152}};
  DateField day{16, "", false}, day_off{17, "", true};
  ChoiceList choice{18, "", false};
  TickList rows{19, ""};
  Pages pages{20, {"eins", "zwei"}};

  std::string rules;
  std::function<void(ControlId)> on_rule = [](ControlId) {};
  using Dialog::End;

 protected:
  void Note(const char* rule, ControlId id) {
    rules += rule + std::to_string(id) + ";";
    on_rule(id);
  }
  void OnOpened() override { Note("opened ", 0); }
  void OnPressed(ControlId id) override { Note("pressed ", id); }
  void OnChanged(ControlId id) override { Note("changed ", id); }
  void OnRowSelected(ControlId id) override { Note("row ", id); }
};

platform::CivilTime Day(int year, int month, int day) { return {year, month, day, 0, 0, 0}; }

std::string Held(const Sample& s) {
  std::string held = s.edit.text + "|" + s.on_first.text + "|" + s.on_second.text + "|";
  for (const int number : {int{s.box.ticked}, s.options.chosen, int{s.day.on}, s.day.day.day, int{s.day_off.on},
                           s.day_off.day.day, s.choice.selected(), int{s.rows.rows()[0].ticked},
                           int{s.rows.rows()[1].ticked}, s.rows.selected, s.pages.current}) {
    held += std::to_string(number) + " ";
  }
  return held;
}

TEST(Dialog, AnswersEachEventAndRunsTheRuleOnlyForWhatItTook) {
  const struct {
    Event event;
    Answer answer;
    const char* rules;
    const char* held = "alt|||0 0 1 1 1 1 0 0 0 -1 0 ";
  } kCases[] = {
      {Typed{10, "erste\r\nzweite"}, Answer::kTaken, "changed 10;", "erste|||0 0 1 1 1 1 0 0 0 -1 0 "},
      {Typed{11, "x"}, Answer::kReadOnly, ""},
      {Pressed{13}, Answer::kTaken, "pressed 13;"},
      {Pressed{10}, Answer::kWrongKind, ""},
      {Pressed{kOk}, Answer::kNoSuchControl, ""},
      {BoxTicked{14, true}, Answer::kTaken, "changed 14;", "alt|||1 0 1 1 1 1 0 0 0 -1 0 "},
      {OptionChosen{15, 1}, Answer::kTaken, "changed 15;", "alt|||0 1 1 1 1 1 0 0 0 -1 0 "},
      {Pressed{152}, Answer::kTaken, "changed 15;", "alt|||0 1 1 1 1 1 0 0 0 -1 0 "},
      {Pressed{15}, Answer::kWrongKind, ""},
      {OptionChosen{15, 2}, Answer::kNoSuchEntry, ""},
      {OptionChosen{15, -1}, Answer::kNoSuchEntry, ""},
      {DaySet{16, false, Day(2024, 2, 29)}, Answer::kTaken, "changed 16;", "alt|||0 0 1 29 1 1 0 0 0 -1 0 "},
      {DaySet{16, true, Day(2023, 2, 29)}, Answer::kNoSuchEntry, ""},
      {DaySet{16, true, Day(2023, 257, 1)}, Answer::kNoSuchEntry, ""},
      {DaySet{17, false, Day(0, 0, 0)}, Answer::kTaken, "changed 17;", "alt|||0 0 1 1 0 1 0 0 0 -1 0 "},
      {EntrySelected{18, 1}, Answer::kTaken, "changed 18;", "alt|||0 0 1 1 1 1 1 0 0 -1 0 "},
      {EntrySelected{18, -1}, Answer::kTaken, "changed 18;", "alt|||0 0 1 1 1 1 -1 0 0 -1 0 "},
      {EntrySelected{18, 2}, Answer::kNoSuchEntry, ""},
      {RowTicked{19, 1, true}, Answer::kTaken, "changed 19;", "alt|||0 0 1 1 1 1 0 0 1 -1 0 "},
      {RowTicked{19, -1, true}, Answer::kNoSuchEntry, ""},
      {RowSelected{19, 1}, Answer::kTaken, "row 19;", "alt|||0 0 1 1 1 1 0 0 0 1 0 "},
      {RowSelected{19, 2}, Answer::kNoSuchEntry, ""},
      {PageTurned{20, 1}, Answer::kTaken, "changed 20;", "alt|||0 0 1 1 1 1 0 0 0 -1 1 "},
      {PageTurned{20, 2}, Answer::kNoSuchEntry, ""},
      {Typed{21, "x"}, Answer::kTaken, "changed 21;", "alt|x||0 0 1 1 1 1 0 0 0 -1 0 "},
      {Closed{}, Answer::kTaken, "pressed 2;"},
      {Opened{}, Answer::kBusy, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    Sample dialog;
    EXPECT_EQ(dialog.Handle(c.event), std::holds_alternative<Opened>(c.event) ? Answer::kTaken : Answer::kNotOpen);
    dialog.Handle(Opened{});
    dialog.rules.clear();
    dialog.edit.text = "alt";
    dialog.day.day = dialog.day_off.day = Day(2016, 3, 1);
    dialog.options.chosen = 0;
    dialog.choice.Select(0);
    EXPECT_EQ(dialog.Handle(c.event), c.answer);
    EXPECT_EQ(dialog.rules, c.rules);
    EXPECT_EQ(Held(dialog), c.held);
  }
}

TEST(Dialog, AHiddenADisabledAndABusyOneTakeNothing) {
  Sample dialog;
  Answer inner = Answer::kTaken;
  dialog.on_rule = [&](ControlId) { inner = dialog.Handle(Typed{21, "x"}); };
  dialog.Handle(Opened{});
  EXPECT_EQ(inner, Answer::kBusy);
  dialog.pages.current = 1;
  EXPECT_EQ(dialog.Handle(Typed{21, "x"}), Answer::kTaken);
  EXPECT_EQ(dialog.on_first.text, "") << "of two controls with one number the one in sight counts";
  dialog.on_second.enabled = false;
  EXPECT_EQ(dialog.Handle(Typed{21, "y"}), Answer::kDisabled);
  dialog.pages.visible = false;
  EXPECT_EQ(dialog.Handle(Typed{21, "y"}), Answer::kHidden);
  EXPECT_EQ(dialog.on_second.text, "x");
}

/// Plays events, and checks that nothing is thrown through its loop.
class Player : public Desktop {
 public:
  explicit Player(std::vector<Event> events) : events_(std::move(events)) {}
  void Run(Dialog& dialog, Window) override {
    for (const Event& event : events_) {
      if (!dialog.IsOpen()) break;
      EXPECT_NO_THROW(dialog.Handle(event));
    }
    platform::SetLastSystemError(99);
    ++runs;
  }
  int ShowBox(const std::string&, const std::string&, unsigned, Window) override { return kAnswerOk; }
  bool PickFile(const FilePick&, std::string*, int*) override { return false; }
  bool PickFolder(const std::string&, Window, std::string*) override { return false; }
  std::vector<WindowInfo> TopLevelWindows() override { return {}; }
  Window FindWindow(const std::string&, const std::string&) override { return 0; }
  Window ForegroundWindow() override { return 0; }
  const platform::Clock& Clock() override { return platform::CurrentClock(); }

  int runs = 0;

 private:
  std::vector<Event> events_;
};

TEST(RunModal, GivesWhatTheRuleEndedWith) {
  Sample dialog;
  dialog.on_rule = [&](ControlId) { dialog.End(7); };
  Player never({});
  EXPECT_EQ(RunModal(never, dialog, 0), 7);
  EXPECT_EQ(never.runs, 0);
  dialog.on_rule = [&](ControlId id) {
    if (id != 0) dialog.End(id == 13 ? 42 : id);
  };
  const std::pair<std::vector<Event>, int> kRuns[] = {{{Pressed{13}}, 42}, {{Closed{}}, kCancel}, {{}, kCancel}};
  for (const auto& [events, result] : kRuns) {
    Player player(events);
    EXPECT_EQ(RunModal(player, dialog, 0), result);
  }
}

TEST(RunModal, RaisesWhatARuleThrewOrDidBehindAllLoops) {
  for (const bool fault : {false, true}) {
    Sample outer, inner;
    Player inner_player({Pressed{13}, Typed{10, "x"}}), outer_player({Pressed{13}});
    inner.on_rule = [&](ControlId id) {
      if (id == 0) return;
      platform::SetLastSystemError(17);
      if (fault) __builtin_trap();
      throw 1;
    };
    outer.on_rule = [&](ControlId id) {
      if (id != 0) RunModal(inner_player, inner, 0);
    };
    if (fault) {
      EXPECT_THROW(RunModal(outer_player, outer, 0), platform::MachineFault);
    } else {
      EXPECT_THROW(RunModal(outer_player, outer, 0), int);
    }
    EXPECT_EQ(platform::LastSystemError(), 17);
    EXPECT_EQ(inner.rules, "opened 0;pressed 13;");
    EXPECT_EQ(inner_player.runs + outer_player.runs, 2);
    EXPECT_FALSE(outer.IsOpen());
    EXPECT_NO_THROW(outer.Rethrow());
  }
}

}  // namespace
}  // namespace toolkit
