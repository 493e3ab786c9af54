#include "toolkit/dialog.h"

#include <algorithm>
#include <chrono>
#include <type_traits>
#include <utility>

#include "platform/fault.h"
#include "platform/system.h"

namespace toolkit {

namespace {

template <class C, Kind K>
struct Changes {
  using Type = C;
  static constexpr Kind kKind = K;
};

/// The control that an event changes.
template <class E>
struct Target;
template <>
struct Target<Typed> : Changes<TextField, Kind::kText> {};
template <>
struct Target<Pressed> : Changes<Button, Kind::kButton> {};
template <>
struct Target<BoxTicked> : Changes<TickBox, Kind::kTickBox> {};
template <>
struct Target<OptionChosen> : Changes<RadioGroup, Kind::kRadioGroup> {};
template <>
struct Target<DaySet> : Changes<DateField, Kind::kDate> {};
template <>
struct Target<EntrySelected> : Changes<ChoiceList, Kind::kChoice> {};
template <>
struct Target<RowTicked> : Changes<TickList, Kind::kTickList> {};
template <>
struct Target<RowSelected> : Changes<TickList, Kind::kTickList> {};
template <>
struct Target<PageTurned> : Changes<Pages, Kind::kPages> {};

bool Has(std::size_t count, int position) { return position >= 0 && static_cast<std::size_t>(position) < count; }

bool IsDay(const platform::CivilTime& day) {
  // The calendar's own types hold a byte.
  if (day.year < 1 || day.year > 9999 || day.month < 1 || day.month > 12 || day.day < 1 || day.day > 31) return false;
  return std::chrono::year_month_day(std::chrono::year(day.year), std::chrono::month(static_cast<unsigned>(day.month)),
                                     std::chrono::day(static_cast<unsigned>(day.day)))
      .ok();
}

Answer Change(TextField& field, const Typed& event) {
  if (field.form != TextField::Form::kEdit) return Answer::kReadOnly;
  // Nobody types a line break, but one may stand in the text that is edited.
  constexpr std::string_view kBreaks = "\r\n";
  const bool is_broken = field.text.find_first_of(kBreaks) != std::string::npos;
  std::string text = event.text.substr(0, event.text.find('\0'));
  if (!is_broken) text.resize(std::min(text.find_first_of(kBreaks), text.size()));
  field.text = std::move(text);
  return Answer::kTaken;
}

Answer Change(Button&, const Pressed&) { return Answer::kTaken; }

Answer Change(TickBox& box, const BoxTicked& event) {
  box.ticked = event.on;
  return Answer::kTaken;
}

Answer Change(RadioGroup& group, const OptionChosen& event) {
  if (!Has(group.options.size(), event.option)) return Answer::kNoSuchEntry;
  group.chosen = event.option;
  return Answer::kTaken;
}

Answer Change(DateField& field, const DaySet& event) {
  if (!IsDay(event.day)) return Answer::kNoSuchEntry;
  field.day = event.day;
  return Answer::kTaken;
}

Answer Change(ChoiceList& list, const EntrySelected& event) {
  if (event.position != -1 && !Has(list.entries().size(), event.position)) return Answer::kNoSuchEntry;
  list.Select(event.position);
  return Answer::kTaken;
}

Answer Change(TickList& list, const RowTicked& event) {
  if (!Has(list.rows().size(), event.row)) return Answer::kNoSuchEntry;
  list.Tick(static_cast<std::size_t>(event.row), event.on);
  return Answer::kTaken;
}

Answer Change(TickList& list, const RowSelected& event) {
  if (event.row != -1 && !Has(list.rows().size(), event.row)) return Answer::kNoSuchEntry;
  list.selected = event.row;
  return Answer::kTaken;
}

Answer Change(Pages& pages, const PageTurned& event) {
  if (!Has(pages.captions.size(), event.page)) return Answer::kNoSuchEntry;
  pages.current = event.page;
  return Answer::kTaken;
}

/// Position of the option with that number in a group; -1 for all other controls too.
int OptionOf(const Control& control, ControlId id) {
  return control.kind() == Kind::kRadioGroup ? static_cast<const RadioGroup&>(control).OptionOf(id) : -1;
}

}  // namespace

Control* Dialog::Find(ControlId id) const {
  // A page in front hides what has the same number behind it.
  const auto rank = [this](const Control& control) { return !Shows(control) ? 0 : control.pages_id == 0 ? 1 : 2; };
  Control* best = nullptr;
  for (Control* control : controls_) {
    if (control->id() != id && OptionOf(*control, id) < 0) continue;
    if (best == nullptr || rank(*control) > rank(*best)) best = control;
  }
  return best;
}

bool Dialog::Shows(const Control& control) const {
  if (!control.visible) return false;
  if (control.pages_id == 0) return true;
  for (const Control* other : controls_) {
    if (other->kind() != Kind::kPages || other->id() != control.pages_id) continue;
    return other->visible && static_cast<const Pages*>(other)->current == control.page;
  }
  return false;
}

Event Dialog::Meant(const Event& event) const {
  const auto* pressed = std::get_if<Pressed>(&event);
  const Control* control = pressed != nullptr ? Find(pressed->id) : nullptr;
  const int option = control != nullptr ? OptionOf(*control, pressed->id) : -1;
  return option < 0 ? event : OptionChosen{control->id(), option};
}

Answer Dialog::Handle(const Event& as_sent) {
  const Event event = Meant(as_sent);
  const bool opening = std::holds_alternative<Opened>(event);
  if (busy_ || (IsOpen() && opening)) return Answer::kBusy;
  if (!IsOpen() && !opening) return Answer::kNotOpen;
  const Answer answer = Apply(event);
  if (answer != Answer::kTaken) return answer;
  busy_ = true;
  try {
    platform::RunRaisingFaults([&] { Run(event); });
  } catch (...) {
    failure_error_ = platform::LastSystemError();
    failure_ = std::current_exception();
    End(kCancel);
  }
  busy_ = false;
  return answer;
}

void Dialog::Rethrow() {
  if (failure_ == nullptr) return;
  platform::SetLastSystemError(failure_error_);
  std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Dialog::End(int result) {
  state_ = State::kEnded;
  result_ = result;
}

Answer Dialog::Apply(const Event& event) {
  return std::visit(
      [this]<class E>(const E& e) {
        if constexpr (std::is_same_v<E, Opened>) {
          state_ = State::kOpen;
          result_ = kCancel;
          return Answer::kTaken;
        } else if constexpr (std::is_same_v<E, Closed>) {
          return Answer::kTaken;
        } else {
          Control* control = Find(e.id);
          if (control == nullptr) return Answer::kNoSuchControl;
          if (!Shows(*control)) return Answer::kHidden;
          if (!control->enabled) return Answer::kDisabled;
          if (control->kind() != Target<E>::kKind) return Answer::kWrongKind;
          return Change(static_cast<typename Target<E>::Type&>(*control), e);
        }
      },
      event);
}

void Dialog::Run(const Event& event) {
  std::visit(
      [this]<class E>(const E& e) {
        if constexpr (std::is_same_v<E, Opened>) {
          OnOpened();
        } else if constexpr (std::is_same_v<E, Closed>) {
          OnPressed(kCancel);
        } else if constexpr (std::is_same_v<E, Pressed>) {
          OnPressed(e.id);
        } else if constexpr (std::is_same_v<E, RowSelected>) {
          OnRowSelected(e.id);
        } else {
          OnChanged(e.id);
        }
      },
      event);
}

}  // namespace toolkit
