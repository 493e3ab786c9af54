#include <gtest/gtest.h>

#include <sstream>

#include "base/text.h"
#include "platform/system.h"
#include "tests/support/scripted_desktop.h"
#include "toolkit/dialog.h"

namespace toolkit {
namespace {

using namespace text::literals;

TEST(ChoiceList, SortsAsAGermanReaderExpectsAndKeepsTheSelection) {
  ChoiceList added(1, "", true), filled(1, "", true);
  std::vector<ChoiceList::Entry> entries;
  for (const char* label : {"Pfahl", "Öffnung"_ansi, "ofen", "Ähre"_ansi, "Ofen", "Acker", "ofen"}) {
    entries.push_back({label, static_cast<int>(entries.size()), ""});
    added.Add(entries.back());
    if (entries.size() == 1) added.Select(0);
  }
  filled.Add(entries[0]);
  filled.Select(0);
  filled.Fill(entries);
  EXPECT_EQ(added.selected(), 6) << "the same entry as before";
  EXPECT_EQ(filled.SelectedValue(), -1);
  for (ChoiceList* list : {&added, &filled}) {
    std::string values;
    for (const auto& entry : list->entries()) values += std::to_string(entry.value);
    EXPECT_EQ(values, "5326410");
  }
}

/// One control of each kind, and a note of every rule that ran.
class Sample : public Dialog {
 public:
  Sample() : Dialog(1, "Probe") {
    for (Control* control : std::initializer_list<Control*>{&edit, &button, &box, &options, &day, &choice, &rows,
                                                            &pages, &on_first, &on_second}) {
      Add(control);
    }
    choice.Add({"a", 1, ""});
    rows.Add({"r", 1, false});
    on_second.pages_id = on_first.pages_id = pages.id();
    on_second.page = 1;
  }

  TextField edit{10, ""}, on_first{21, ""}, on_second{21, ""};
  Button button{13, ""};
  TickBox box{14, ""};
  RadioGroup options{15, "", {"x", "y"}, {151, 152}};
  DateField day{16, ""};
  ChoiceList choice{18, "", false};
  TickList rows{19, ""};
  Pages pages{20, {"eins", "zwei"}};

  std::string rules;
  std::function<void(ControlId)> on_rule = [](ControlId) {};
  using Dialog::End;

 protected:
  void OnOpened() override { OnPressed(0); }
  void OnPressed(ControlId id) override {
    rules += "pressed " + std::to_string(id);
    on_rule(id);
  }
  void OnChanged(ControlId id) override { rules += "changed " + std::to_string(id); }
  void OnRowSelected(ControlId id) override { rules += "row " + std::to_string(id); }
};

TEST(Dialog, AnswersEachEventAndRunsTheRuleOnlyForWhatItTook) {
  const char* const untouched = "alt|0 0 1 0 0 -1 0";
  const struct {
    Event event;
    Answer answer;
    const char *rules, *held;
  } kCases[] = {
      {Typed{10, "erste\r\nzweite"}, Answer::kTaken, "changed 10", "erste|0 0 1 0 0 -1 0"},
      {Pressed{13}, Answer::kTaken, "pressed 13", untouched},
      {Closed{}, Answer::kTaken, "pressed 2", untouched},
      {Pressed{152}, Answer::kTaken, "changed 15", "alt|0 1 1 0 0 -1 0"},
      {OptionChosen{15, 2}, Answer::kNoSuchEntry, "", untouched},
      {DaySet{16, {2024, 2, 29}}, Answer::kTaken, "changed 16", "alt|0 0 29 0 0 -1 0"},
      {DaySet{16, {2023, 2, 29}}, Answer::kNoSuchEntry, "", untouched},
      {EntrySelected{18, -1}, Answer::kTaken, "changed 18", "alt|0 0 1 -1 0 -1 0"},
      {EntrySelected{18, 1}, Answer::kNoSuchEntry, "", untouched},
      {RowTicked{19, 0, true}, Answer::kTaken, "changed 19", "alt|0 0 1 0 1 -1 0"},
      {RowTicked{19, -1, true}, Answer::kNoSuchEntry, "", untouched},
      {RowSelected{19, 0}, Answer::kTaken, "row 19", "alt|0 0 1 0 0 0 0"},
      {PageTurned{20, 1}, Answer::kTaken, "changed 20", "alt|0 0 1 0 0 -1 1"},
      {PageTurned{20, 2}, Answer::kNoSuchEntry, "", untouched},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    Sample s;
    EXPECT_EQ(s.Handle(c.event), Answer::kNotOpen);
    s.Handle(Opened{});
    s.rules.clear();
    s.edit.text = "alt";
    s.day.day = {2016, 3, 1};
    s.options.chosen = 0;
    s.choice.Select(0);
    EXPECT_EQ(s.Handle(c.event), c.answer);
    EXPECT_EQ(s.rules, c.rules);
    std::ostringstream held;
    held << s.edit.text << "|" << s.box.ticked << " " << s.options.chosen << " " << s.day.day.day << " "
         << s.choice.selected() << " " << s.rows.rows()[0].ticked << " " << s.rows.selected << " " << s.pages.current;
    EXPECT_EQ(held.str(), c.held);
  }
  Sample s;
  s.Handle(Opened{});
  s.edit.text = "a\r\r\nb";
  s.Handle(Typed{10, std::string("a\r\r\nbc\0d", 8)});
  EXPECT_EQ(s.edit.text, "a\r\r\nbc") << "what stood in the field already is not lost";
}

TEST(Dialog, TakesNothingWhileBusyAndOfTwoControlsWithOneNumberTheOneInSight) {
  Sample dialog;
  Answer inner = Answer::kTaken;
  dialog.on_rule = [&](ControlId) { inner = dialog.Handle(Typed{21, "x"}); };
  dialog.Handle(Opened{});
  EXPECT_EQ(inner, Answer::kBusy);
  dialog.pages.current = 1;
  EXPECT_EQ(dialog.Handle(Typed{21, "x"}), Answer::kTaken);
  EXPECT_EQ(dialog.on_first.text + "|" + dialog.on_second.text, "|x");
}

TEST(RunModal, RaisesWhatARuleThrewOrDidBehindAllLoops) {
  for (const bool fault : {false, true}) {
    support::ScriptedDesktop desktop;
    Sample outer, inner;
    const auto press = [](Dialog& dialog) {
      EXPECT_NO_THROW(dialog.Handle(Pressed{13}));
      EXPECT_FALSE(dialog.IsOpen());
      platform::SetLastSystemError(99);
    };
    desktop.persons = {press, press};
    inner.on_rule = [&](ControlId id) {
      platform::SetLastSystemError(17);
      if (fault && id == 13) __builtin_trap();
      if (id == 13) throw 1;
    };
    outer.on_rule = [&](ControlId id) {
      if (id == 13) RunModal(desktop, inner, 0);
    };
    EXPECT_ANY_THROW(RunModal(desktop, outer, 0));
    EXPECT_EQ(platform::LastSystemError(), 17);
    EXPECT_NO_THROW(outer.Rethrow());
    outer.on_rule = [&](ControlId) { outer.End(7); };
    EXPECT_EQ(RunModal(desktop, outer, 0), 7);
    EXPECT_EQ(desktop.dialogs.size(), 2U) << "what ends while it opens is not shown";
  }
}

}  // namespace
}  // namespace toolkit
