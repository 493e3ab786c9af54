// Controls as plain data: what a person sees and may change, without a word on how it is drawn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/clock.h"

namespace toolkit {

/// Number of a control in its dialog. 1 and 2 are the buttons that Enter and Escape mean.
using ControlId = int;
inline constexpr ControlId kOk = 1;
inline constexpr ControlId kCancel = 2;

enum class Kind { kText, kButton, kTickBox, kRadioGroup, kDate, kChoice, kTickList, kPages };

/// What every control has. All texts are Windows-1252. Controls are members of their dialog and live as long as it.
class Control {
 public:
  Control(Kind kind, ControlId id, std::string label) : kind_(kind), id_(id), label_(std::move(label)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Kind kind() const { return kind_; }
  ControlId id() const { return id_; }
  const std::string& label() const { return label_; }
  void SetLabel(std::string label) { label_ = std::move(label); }

  bool visible = true;
  bool enabled = true;

  /// Hints of layout: caption of the group of controls that it stands in, and the page of a Pages control (its id and
  /// the page's index from 0). Empty and 0 where it stands free.
  std::string group;
  ControlId pages_id = 0;
  int page = 0;
  /// Hint of layout: stands in one row with the control in front of it.
  bool beside = false;

 private:
  Kind kind_;
  ControlId id_;
  std::string label_;
};

/// A field of text, of one line or several; a read-only one only shows.
class TextField : public Control {
 public:
  enum class Form { kEdit, kReadOnly, kReadOnlyLines };
  TextField(ControlId id, std::string label, Form how = Form::kEdit)
      : Control(Kind::kText, id, std::move(label)), form(how) {}
  Form form;
  std::string text;
};

class Button : public Control {
 public:
  Button(ControlId id, std::string label) : Control(Kind::kButton, id, std::move(label)) {}
};

class TickBox : public Control {
 public:
  TickBox(ControlId id, std::string label) : Control(Kind::kTickBox, id, std::move(label)) {}
  bool ticked = false;
};

/// Buttons of which one at most is chosen; -1 none. Buttons that have numbers of their own (`option_ids`, one for each
/// option, or none at all) can be pressed by them.
class RadioGroup : public Control {
 public:
  RadioGroup(ControlId id, std::string label, std::vector<std::string> all, std::vector<ControlId> ids = {})
      : Control(Kind::kRadioGroup, id, std::move(label)), options(std::move(all)), option_ids(std::move(ids)) {}
  /// Position of the option with that number, -1 for none.
  int OptionOf(ControlId id) const;

  std::vector<std::string> options;
  std::vector<ControlId> option_ids;
  int chosen = -1;
};

/// A day. With a box of the dialog that belongs to it, the day counts only while that is ticked.
class DateField : public Control {
 public:
  DateField(ControlId id, std::string label, const TickBox* box = nullptr)
      : Control(Kind::kDate, id, std::move(label)), box_(box) {}
  bool Counts() const { return box_ == nullptr || box_->ticked; }
  platform::CivilTime day;  ///< year, month and day count

 private:
  const TickBox* box_;
};

/// A list of entries of which one at most is selected. An entry has a label and a value, a number or a text.
class ChoiceList : public Control {
 public:
  struct Entry {
    std::string label;
    std::int32_t value = -1;
    std::string text;
  };
  ChoiceList(ControlId id, std::string label, bool sorted)
      : Control(Kind::kChoice, id, std::move(label)), sorted_(sorted) {}

  /// Adds an entry, in a sorted list behind all that a German reader expects in front of it or beside it. The selected
  /// entry stays the selected one. Gives the new entry's position. For many entries at once see Fill.
  std::size_t Add(Entry entry);
  /// Replaces all entries in one go; nothing is selected then.
  void Fill(std::vector<Entry> entries);
  void Clear();
  const std::vector<Entry>& entries() const { return entries_; }
  /// Position of the selected entry, -1 for none; a position that no entry has selects none.
  int selected() const { return selected_; }
  void Select(int position);
  /// Selects the first entry with this value, or none.
  void SelectValue(std::int32_t value);
  /// The selected entry, or null.
  const Entry* selection() const;
  /// Value of the selected entry, -1 for none.
  std::int32_t SelectedValue() const;
  /// Another number after each change of the entries.
  std::uint64_t revision() const { return revision_; }

 private:
  bool sorted_;
  std::vector<Entry> entries_;
  int selected_ = -1;
  std::uint64_t revision_ = 0;
};

/// A flat list of rows with a tick box each, in order of insertion. One row at most is selected.
class TickList : public Control {
 public:
  struct Row {
    std::string label;
    std::int32_t value = 0;
    bool ticked = false;
  };
  TickList(ControlId id, std::string label) : Control(Kind::kTickList, id, std::move(label)) {}

  void Add(Row row) {
    ticked_ += row.ticked ? 1 : 0;
    rows_.push_back(std::move(row));
    ++revision_;
  }
  /// Takes all rows away, and the selection with them.
  void Clear() {
    rows_.clear();
    ticked_ = 0;
    selected = -1;
    ++revision_;
  }
  const std::vector<Row>& rows() const { return rows_; }
  void Tick(std::size_t row, bool on) {
    ticked_ = ticked_ + (on ? 1 : 0) - (rows_[row].ticked ? 1 : 0);
    rows_[row].ticked = on;
    ++ticks_revision_;
  }
  void TickAll(bool on) {
    for (Row& row : rows_) row.ticked = on;
    ticked_ = on ? rows_.size() : 0;
    ++ticks_revision_;
  }
  /// Number of ticked rows, kept at hand: it is asked for after every click.
  std::size_t ticked() const { return ticked_; }
  /// Another number after each row that comes or goes, and after each tick.
  std::uint64_t revision() const { return revision_; }
  std::uint64_t ticks_revision() const { return ticks_revision_; }

  int selected = -1;

 private:
  std::vector<Row> rows_;
  std::size_t ticked_ = 0;
  std::uint64_t revision_ = 0;
  std::uint64_t ticks_revision_ = 0;
};

/// A sheet of pages with captions that may change. Controls name their page themselves (pages_id, page).
class Pages : public Control {
 public:
  Pages(ControlId id, std::vector<std::string> all) : Control(Kind::kPages, id, {}), captions(std::move(all)) {}
  std::vector<std::string> captions;
  int current = 0;
};

}  // namespace toolkit
