// A dialog is rules over controls. A front end draws the controls and turns what the person does into events.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/clock.h"
#include "toolkit/control.h"

namespace toolkit {

/// What a person can do. `row` and `position` count from 0; -1 takes a selection back.
struct Opened {};
struct Typed {
  ControlId id;
  std::string text;
};
struct Pressed {
  ControlId id;
};
struct BoxTicked {
  ControlId id;
  bool on;
};
struct OptionChosen {
  ControlId id;
  int option;
};
struct DaySet {
  ControlId id;
  platform::CivilTime day;
};
struct EntrySelected {
  ControlId id;
  int position;
};
struct RowTicked {
  ControlId id;
  int row;
  bool on;
};
struct RowSelected {
  ControlId id;
  int row;
};
struct PageTurned {
  ControlId id;
  int page;
};
struct Closed {};  ///< the window's own way out, the same as kCancel
using Event = std::variant<Opened, Typed, Pressed, BoxTicked, OptionChosen, DaySet, EntrySelected, RowTicked,
                           RowSelected, PageTurned, Closed>;

/// Why an event was not taken. kBusy: a rule of the dialog still runs, as a rule behind a box or dialog of its own.
enum class Answer { kTaken, kNoSuchControl, kHidden, kDisabled, kReadOnly, kWrongKind, kNoSuchEntry, kNotOpen, kBusy };

/// Base of all dialogs. Handle is the one way in for console, desktop and tests.
class Dialog {
 public:
  Dialog(int number, std::string title) : number_(number), title_(std::move(title)) {}
  virtual ~Dialog() = default;
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  int number() const { return number_; }
  const std::string& title() const { return title_; }
  /// In order of the keyboard; pointers to members of the dialog.
  const std::vector<Control*>& controls() const { return controls_; }
  /// Pages may use a number twice: the control on the page in front, else the first that the person sees, else the
  /// first. The number of an option finds its group. Null where there is no such control.
  Control* Find(ControlId id) const;
  /// Whether the person sees the control: it is visible, and so is the page that it stands on.
  bool Shows(const Control& control) const;

  /// Refuses an event for a control that is missing, not shown, disabled or read-only, or for an entry or a day that is
  /// not there; otherwise changes the control and runs the dialog's rule. A control that refuses keeps what it holds. A
  /// field of one line takes what was typed up to the first line break, unless its text has line breaks already.
  /// Never lets an exception or a machine fault through: it ends the dialog and keeps the failure for Rethrow, so that
  /// nothing is thrown through a front end's event loop. The press of an option counts as its choice.
  virtual Answer Handle(const Event& event);

  bool IsOpen() const { return state_ == State::kOpen; }
  /// Result of the dialog once it is closed: kOk, kCancel or what a rule gave to End.
  int result() const { return result_; }
  /// Raises what a rule threw, if one did, with the last system error as it was then. A second call raises nothing.
  void Rethrow();

 protected:
  void Add(Control* control) { controls_.push_back(control); }
  void SetTitle(std::string title) { title_ = std::move(title); }
  /// Ends the dialog; the front end closes it when the running event is done.
  void End(int result);

  /// The rules, called with the control already changed. Closed comes as a press of kCancel, whether or not there is
  /// such a button; the rule decides whether the dialog ends.
  virtual void OnOpened() {}
  virtual void OnPressed(ControlId id) = 0;
  virtual void OnChanged(ControlId /*id*/) {}  ///< text, tick, option, day, entry, row tick, page
  virtual void OnRowSelected(ControlId /*id*/) {}

 private:
  enum class State { kNew, kOpen, kEnded };
  /// The event as its control takes it.
  Event Meant(const Event& event) const;
  Answer Apply(const Event& event);
  void Run(const Event& event);

  int number_;
  std::string title_;
  std::vector<Control*> controls_;
  State state_ = State::kNew;
  int result_ = kCancel;
  bool busy_ = false;
  std::exception_ptr failure_;
  int failure_error_ = 0;
};

}  // namespace toolkit
