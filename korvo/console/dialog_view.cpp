#include "korvo/console/dialog_view.h"

#include <algorithm>

#include "base/text.h"
#include "korvo/words/words.h"

namespace korvo {

using namespace text::literals;
using toolkit::Kind;

namespace {

std::string Padded(std::string text, std::size_t width) {
  if (text.size() < width) text.insert(0, width - text.size(), ' ');
  return text;
}

std::string State(const toolkit::Control& control) { return control.enabled ? "" : "  (gesperrt)"; }

}  // namespace

std::string DialogView::Front() const {
  std::string front = std::to_string(dialog_.number()) + " " + dialog_.title();
  for (const toolkit::Control* control : dialog_.controls()) {
    if (control->kind() != Kind::kPages || !dialog_.Shows(*control)) continue;
    front += "\n" + std::to_string(static_cast<const toolkit::Pages*>(control)->current);
  }
  return front;
}

void DialogView::ShowAll() {
  terminal_.Say("");
  terminal_.Say("=== " + std::to_string(dialog_.number()) + "  " + dialog_.title() + " ===");
  std::string group;
  shown_.clear();
  shown_front_ = Front();
  for (const toolkit::Control* control : dialog_.controls()) {
    if (!dialog_.Shows(*control)) continue;
    if (control->group != group) terminal_.Say("  -- " + (control->group.empty() ? "-" : control->group) + " --");
    group = control->group;
    auto& lines = shown_[control];
    lines = Render(*control);
    for (const std::string& line : lines) terminal_.Say(line);
  }
}

void DialogView::ShowChanges() {
  if (Front() != shown_front_) {
    ShowAll();
    return;
  }
  for (const toolkit::Control* control : dialog_.controls()) {
    const auto before = shown_.find(control);
    if (!dialog_.Shows(*control)) {
      if (before == shown_.end()) continue;
      shown_.erase(before);
      terminal_.Say(Padded(std::to_string(control->id()), 6) + "  " + control->label() + "  (ausgeblendet)");
      continue;
    }
    std::vector<std::string> lines = Render(*control);
    if (before != shown_.end() && before->second == lines) continue;
    for (const std::string& line : lines) terminal_.Say(line);
    shown_[control] = std::move(lines);
  }
}

void DialogView::Show(const toolkit::Control& control, int from, int count) {
  parts_[&control] = {std::max(from, 0), std::max(count, 1)};
  auto& lines = shown_[&control];
  lines = Render(control);
  for (const std::string& line : lines) terminal_.Say(line);
  if (control.kind() == Kind::kChoice) {
    lines.clear();
    RenderEntries(static_cast<const toolkit::ChoiceList&>(control), &lines);
    for (const std::string& line : lines) terminal_.Say(line);
    lines = Render(control);
  }
}

std::vector<std::string> DialogView::Render(const toolkit::Control& control) {
  std::string head = Padded(std::to_string(control.id()), 6) + "  ";
  const std::string label = std::string(Trim(control.label()));
  const std::string named = label.empty() ? head : head + label + " ";
  std::vector<std::string> lines;
  switch (control.kind()) {
    case Kind::kText: {
      const auto& field = static_cast<const toolkit::TextField&>(control);
      if (field.form == toolkit::TextField::Form::kReadOnlyLines) {
        lines.push_back(named + "(nur lesen)" + State(control));
        for (const std::string& line : Lines(field.text)) lines.push_back("        | " + line);
      } else {
        const bool read_only = field.form == toolkit::TextField::Form::kReadOnly;
        lines.push_back(named + "[" + field.text + "]" + (read_only ? "  (nur lesen)" : "") + State(control));
      }
      break;
    }
    case Kind::kButton:
      lines.push_back(head + "<" + label + ">" + State(control));
      break;
    case Kind::kTickBox:
      lines.push_back(head + (static_cast<const toolkit::TickBox&>(control).ticked ? "[x] " : "[ ] ") + label +
                      State(control));
      break;
    case Kind::kRadioGroup: {
      const auto& group = static_cast<const toolkit::RadioGroup&>(control);
      std::string line = named;
      for (std::size_t i = 0; i < group.options.size(); ++i) {
        line += static_cast<int>(i) == group.chosen ? "(x) " : "( ) ";
        if (i < group.option_ids.size()) line += std::to_string(group.option_ids[i]) + " ";
        line += group.options[i] + "  ";
      }
      lines.push_back(line + State(control));
      break;
    }
    case Kind::kDate: {
      const auto& date = static_cast<const toolkit::DateField&>(control);
      lines.push_back(named + DayText(date.day) + State(control));
      break;
    }
    case Kind::kChoice: {
      const auto& list = static_cast<const toolkit::ChoiceList&>(control);
      const toolkit::ChoiceList::Entry* chosen = list.selection();
      lines.push_back(named + (chosen != nullptr ? "{" + chosen->label + "}" : "{}") + "  (" +
                      std::to_string(list.entries().size()) + " Einträge)"_ansi + State(control));
      break;
    }
    case Kind::kTickList:
      RenderRows(static_cast<const toolkit::TickList&>(control), &lines);
      lines.front() = named + lines.front() + State(control);
      break;
    case Kind::kPages: {
      const auto& pages = static_cast<const toolkit::Pages&>(control);
      std::string line = head + "Seiten:";
      for (std::size_t i = 0; i < pages.captions.size(); ++i) {
        const std::string caption = std::to_string(i + 1) + " " + pages.captions[i];
        line += static_cast<int>(i) == pages.current ? "  [" + caption + "]" : "  " + caption;
      }
      lines.push_back(line + State(control));
      break;
    }
  }
  return lines;
}

void DialogView::RenderRows(const toolkit::TickList& list, std::vector<std::string>* lines) {
  lines->push_back(std::to_string(list.rows().size()) + " Zeilen, " + std::to_string(list.ticked()) + " mit Haken");
  const Part part = parts_[&list];
  const auto from = std::min(static_cast<std::size_t>(part.from), list.rows().size());
  const auto to = std::min(from + static_cast<std::size_t>(part.count), list.rows().size());
  for (std::size_t i = from; i < to; ++i) {
    const toolkit::TickList::Row& row = list.rows()[i];
    const char* mark = static_cast<int>(i) == list.selected ? " >" : "  ";
    lines->push_back("      " + std::string(mark) + Padded(std::to_string(i + 1), 6) +
                     (row.ticked ? " [x] " : " [ ] ") + row.label);
  }
  if (to < list.rows().size()) {
    lines->push_back("        ... weiter mit: zeige " + std::to_string(list.id()) + " " + std::to_string(to + 1));
  }
}

void DialogView::RenderEntries(const toolkit::ChoiceList& list, std::vector<std::string>* lines) {
  const Part part = parts_[&list];
  const auto from = std::min(static_cast<std::size_t>(part.from), list.entries().size());
  const auto to = std::min(from + static_cast<std::size_t>(part.count), list.entries().size());
  for (std::size_t i = from; i < to; ++i) {
    const char* mark = static_cast<int>(i) == list.selected() ? " >" : "  ";
    lines->push_back("      " + std::string(mark) + Padded(std::to_string(i + 1), 6) + "  " + list.entries()[i].label);
  }
  if (to < list.entries().size()) {
    lines->push_back("        ... weiter mit: zeige " + std::to_string(list.id()) + " " + std::to_string(to + 1));
  }
}

}  // namespace korvo
