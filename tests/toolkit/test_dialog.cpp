#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

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
    for (Control* control :
         std::initializer_list<Control*>{&edit, &fixed, &lines, &button, &box, &options, &day, &day_off, &choice, &rows,
                                         &pages, &on_second, &on_first, &twin}) {
      Add(control);
    }
    choice.Fill({{"a", 1, ""}, {"b", 2, ""}});
    rows.Add({"r", 1, false});
    rows.Add({"s", 2, false});
    on_second.pages_id = pages.id();
    twin.pages_id = on_first.pages_id = pages.id();
    on_second.page = twin.page = 1;
  }

  TextField edit{10, "Feld"};
  TextField fixed{11, "", TextField::Form::kReadOnly};
  TextField lines{12, "", TextField::Form::kReadOnlyLines};
  Button button{13, "Los"};
  TickBox box{14, "An"};
  RadioGroup options{15, "", {"x", "y"}, {151, 152}};
  DateField day{16, "", false};
  DateField day_off{17, "", true};
  ChoiceList choice{18, "", false};
  TickList rows{19, ""};
  Pages pages{20, {"eins", "zwei"}};
  TextField on_second{21, ""};
  TextField on_first{22, ""};
  TextField twin{22, ""};  ///< on the second page

  std::string rules;
  std::function<void(ControlId)> on_pressed = [](ControlId) {};
  std::function<void()> on_opened = [] {};
  using Dialog::End;

 protected:
  void OnOpened() override {
    rules += "opened;";
    on_opened();
  }
  void OnPressed(ControlId id) override {
    rules += "pressed " + std::to_string(id) + ";";
    on_pressed(id);
  }
  void OnChanged(ControlId id) override { rules += "changed " + std::to_string(id) + ";"; }
  void OnRowSelected(ControlId id) override { rules += "row " + std::to_string(id) + ";"; }
};

/// Plays events, and checks that nothing is thrown through its loop.
class Player : public Desktop {
 public:
  explicit Player(std::vector<Event> events) : events_(std::move(events)) {}
  void Run(Dialog& dialog, Window) override {
    ++runs;
    for (const Event& event : events_) {
      if (!dialog.IsOpen()) break;
      EXPECT_NO_THROW(dialog.Handle(event));
    }
    platform::SetLastSystemError(99);
    ++ends;
  }
  int ShowBox(const std::string&, const std::string&, unsigned, Window) override { return kAnswerOk; }
  bool PickFile(const FilePick&, std::string*, int*) override { return false; }
  bool PickFolder(const std::string&, Window, std::string*) override { return false; }
  std::vector<WindowInfo> TopLevelWindows() override { return {}; }
  Window FindWindow(const std::string&, const std::string&) override { return 0; }
  Window ForegroundWindow() override { return 0; }
  const platform::Clock& Clock() override { return platform::CurrentClock(); }

  int runs = 0;
  int ends = 0;

 private:
  std::vector<Event> events_;
};

platform::CivilTime Day(int year, int month, int day) { return {year, month, day, 0, 0, 0}; }

TEST(Dialog, AnswersEachEventAndRunsTheRuleOnlyForWhatItTook) {
  const struct {
    const char* name;
    Event event;
    Answer answer;
    const char* rules;
  } kCases[] = {
      {"typed", Typed{10, "4711"}, Answer::kTaken, "changed 10;"},
      {"read-only line", Typed{11, "x"}, Answer::kReadOnly, ""},
      {"read-only lines", Typed{12, "x"}, Answer::kReadOnly, ""},
      {"press", Pressed{13}, Answer::kTaken, "pressed 13;"},
      {"press of a text", Pressed{10}, Answer::kWrongKind, ""},
      {"typed into a button", Typed{13, "x"}, Answer::kWrongKind, ""},
      {"nobody", Pressed{kOk}, Answer::kNoSuchControl, ""},
      {"tick", BoxTicked{14, true}, Answer::kTaken, "changed 14;"},
      {"option", OptionChosen{15, 1}, Answer::kTaken, "changed 15;"},
      {"option behind the last", OptionChosen{15, 2}, Answer::kNoSuchEntry, ""},
      {"press of an option", Pressed{152}, Answer::kTaken, "changed 15;"},
      {"press of the group", Pressed{15}, Answer::kWrongKind, ""},
      {"no option", OptionChosen{15, -1}, Answer::kNoSuchEntry, ""},
      {"leap day", DaySet{16, true, Day(2024, 2, 29)}, Answer::kTaken, "changed 16;"},
      {"no leap day", DaySet{16, true, Day(2023, 2, 29)}, Answer::kNoSuchEntry, ""},
      {"day 0", DaySet{16, true, Day(2023, 2, 0)}, Answer::kNoSuchEntry, ""},
      {"month 257", DaySet{16, true, Day(2023, 257, 1)}, Answer::kNoSuchEntry, ""},
      {"off", DaySet{17, false, Day(0, 0, 0)}, Answer::kTaken, "changed 17;"},
      {"entry", EntrySelected{18, 1}, Answer::kTaken, "changed 18;"},
      {"selection back", EntrySelected{18, -1}, Answer::kTaken, "changed 18;"},
      {"entry behind the last", EntrySelected{18, 2}, Answer::kNoSuchEntry, ""},
      {"row tick", RowTicked{19, 1, true}, Answer::kTaken, "changed 19;"},
      {"tick of no row", RowTicked{19, -1, true}, Answer::kNoSuchEntry, ""},
      {"row", RowSelected{19, 0}, Answer::kTaken, "row 19;"},
      {"row behind the last", RowSelected{19, 2}, Answer::kNoSuchEntry, ""},
      {"page", PageTurned{20, 1}, Answer::kTaken, "changed 20;"},
      {"page behind the last", PageTurned{20, 2}, Answer::kNoSuchEntry, ""},
      {"on the other page", Typed{21, "x"}, Answer::kHidden, ""},
      {"closed", Closed{}, Answer::kTaken, "pressed 2;"},
      {"opened again", Opened{}, Answer::kBusy, ""},
  };
  for (const auto& c : kCases) {
    Sample dialog;
    EXPECT_EQ(dialog.Handle(c.event), std::holds_alternative<Opened>(c.event) ? Answer::kTaken : Answer::kNotOpen);
    dialog.Handle(Opened{});
    dialog.rules.clear();
    EXPECT_EQ(dialog.Handle(c.event), c.answer) << c.name;
    EXPECT_EQ(dialog.rules, c.rules) << c.name;
  }
}

TEST(Dialog, TakesWhatThePersonDid) {
  Sample dialog;
  dialog.Handle(Opened{});
  for (const Event& event : std::initializer_list<Event>{
           Typed{10, "erste\r\nzweite"}, BoxTicked{14, true}, OptionChosen{15, 1}, DaySet{16, false, Day(2016, 3, 2)},
           DaySet{17, true, Day(2016, 3, 2)}, DaySet{17, false, Day(1, 1, 1)}, EntrySelected{18, 1},
           RowTicked{19, 1, true}, RowSelected{19, 1}, Typed{22, "v"}, PageTurned{20, 1}, Typed{21, "x"},
           Typed{22, "y"}}) {
    EXPECT_EQ(dialog.Handle(event), Answer::kTaken);
  }
  EXPECT_EQ(dialog.edit.text, "erste");
  EXPECT_TRUE(dialog.box.ticked);
  EXPECT_EQ(dialog.options.chosen, 1);
  EXPECT_TRUE(dialog.day.on) << "a field that cannot be off";
  EXPECT_EQ(dialog.day.day.day, 2);
  EXPECT_FALSE(dialog.day_off.on);
  EXPECT_EQ(dialog.day_off.day.year, 2016) << "switched off it keeps its day";
  EXPECT_EQ(dialog.choice.SelectedValue(), 2);
  EXPECT_FALSE(dialog.rows.rows()[0].ticked);
  EXPECT_TRUE(dialog.rows.rows()[1].ticked);
  EXPECT_EQ(dialog.rows.selected, 1);
  EXPECT_EQ(dialog.on_second.text, "x");
  EXPECT_EQ(dialog.on_first.text, "v") << "of two controls with one number the one in sight counts";
  EXPECT_EQ(dialog.twin.text, "y");
  dialog.Handle(Pressed{151});
  EXPECT_EQ(dialog.options.chosen, 0);
}

TEST(Dialog, AHiddenOrDisabledControlKeepsWhatItHolds) {
  Sample dialog;
  dialog.Handle(Opened{});
  dialog.edit.text = "alt";
  dialog.edit.visible = false;
  EXPECT_EQ(dialog.Handle(Typed{10, "neu"}), Answer::kHidden);
  dialog.edit.visible = true;
  dialog.edit.enabled = false;
  EXPECT_EQ(dialog.Handle(Typed{10, "neu"}), Answer::kDisabled);
  EXPECT_EQ(dialog.edit.text, "alt");
  dialog.pages.current = 1;
  EXPECT_TRUE(dialog.Shows(dialog.on_second));
  dialog.pages.visible = false;
  EXPECT_FALSE(dialog.Shows(dialog.on_second));
}

TEST(Dialog, IsBusyWhileItsRuleRuns) {
  Sample dialog;
  Answer inner = Answer::kTaken;
  dialog.on_pressed = [&](ControlId) { inner = dialog.Handle(Typed{10, "x"}); };
  dialog.Handle(Opened{});
  dialog.Handle(Pressed{13});
  EXPECT_EQ(inner, Answer::kBusy);
  EXPECT_EQ(dialog.Handle(Typed{10, "x"}), Answer::kTaken);
}

TEST(RunModal, GivesWhatTheRuleEndedWith) {
  Sample dialog;
  dialog.on_pressed = [&](ControlId id) { dialog.End(id == 13 ? 42 : id); };
  Player presses({Pressed{13}});
  EXPECT_EQ(RunModal(presses, dialog, 0), 42);
  Player closes({Closed{}});
  EXPECT_EQ(RunModal(closes, dialog, 0), kCancel) << "the same dialog a second time";
  Player leaves_it_open({});
  EXPECT_EQ(RunModal(leaves_it_open, dialog, 0), kCancel);
}

TEST(RunModal, ADialogThatEndsWhileItOpensIsNeverShown) {
  Sample dialog;
  dialog.on_opened = [&] { dialog.End(7); };
  Player player({});
  EXPECT_EQ(RunModal(player, dialog, 0), 7);
  EXPECT_EQ(player.runs, 0);
}

TEST(RunModal, RaisesARulesExceptionBehindTheLoopWithItsSystemError) {
  Sample dialog;
  dialog.on_pressed = [](ControlId) {
    platform::SetLastSystemError(17);
    throw std::runtime_error("Regel");
  };
  Player player({Pressed{13}, Typed{10, "x"}});
  EXPECT_THROW(RunModal(player, dialog, 0), std::runtime_error);
  EXPECT_EQ(platform::LastSystemError(), 17);
  EXPECT_EQ(player.ends, 1);
  EXPECT_EQ(dialog.rules, "opened;pressed 13;");
  EXPECT_NO_THROW(dialog.Rethrow());
}

TEST(RunModal, AMachineFaultInANestedDialogPassesThroughBothLoops) {
  Sample outer;
  Sample inner;
  Player inner_player({Pressed{13}});
  Player outer_player({Pressed{13}});
  inner.on_pressed = [](ControlId) { __builtin_trap(); };
  outer.on_pressed = [&](ControlId) { RunModal(inner_player, inner, 0); };
  EXPECT_THROW(RunModal(outer_player, outer, 0), platform::MachineFault);
  EXPECT_EQ(inner_player.ends, 1);
  EXPECT_EQ(outer_player.ends, 1);
  EXPECT_FALSE(outer.IsOpen());
}

}  // namespace
}  // namespace toolkit
