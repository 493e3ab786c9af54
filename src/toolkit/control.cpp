#include "toolkit/control.h"

#include <algorithm>

#include "base/text.h"

namespace toolkit {

namespace {

bool Precedes(const ChoiceList::Entry& a, const ChoiceList::Entry& b) {
  return text::CompareGerman(a.label, b.label) < 0;
}

}  // namespace

int RadioGroup::OptionOf(ControlId id) const {
  const auto found = std::find(option_ids.begin(), option_ids.end(), id);
  return found == option_ids.end() ? -1 : static_cast<int>(found - option_ids.begin());
}

std::size_t ChoiceList::Add(Entry entry) {
  const auto place = sorted_ ? std::upper_bound(entries_.begin(), entries_.end(), entry, Precedes) : entries_.end();
  const std::size_t position = static_cast<std::size_t>(place - entries_.begin());
  entries_.insert(place, std::move(entry));
  ++revision_;
  if (selected_ >= 0 && position <= static_cast<std::size_t>(selected_)) ++selected_;
  return position;
}

void ChoiceList::Fill(std::vector<Entry> entries) {
  entries_ = std::move(entries);
  if (sorted_) std::stable_sort(entries_.begin(), entries_.end(), Precedes);
  selected_ = -1;
  ++revision_;
}

void ChoiceList::Clear() { Fill({}); }

void ChoiceList::Select(int position) {
  selected_ = position >= 0 && static_cast<std::size_t>(position) < entries_.size() ? position : -1;
}

void ChoiceList::SelectValue(std::int32_t value) {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), [value](const Entry& entry) { return entry.value == value; });
  Select(found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin()));
}

const ChoiceList::Entry* ChoiceList::selection() const {
  return selected_ < 0 ? nullptr : &entries_[static_cast<std::size_t>(selected_)];
}

std::int32_t ChoiceList::SelectedValue() const {
  const Entry* entry = selection();
  return entry == nullptr ? -1 : entry->value;
}

}  // namespace toolkit
