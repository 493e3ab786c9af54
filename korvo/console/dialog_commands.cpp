#include "korvo/console/dialog_commands.h"

#include <optional>
#include <vector>

#include "base/text.h"
#include "korvo/words/words.h"

namespace korvo {

using namespace text::literals;
using toolkit::Answer;
using toolkit::Kind;

namespace {

const char* Explain(Answer answer) {
  switch (answer) {
    case Answer::kTaken:
      return "";
    case Answer::kNoSuchControl:
      return "gibt es in diesem Fenster nicht"_ansi;
    case Answer::kHidden:
      return "ist nicht sichtbar"_ansi;
    case Answer::kDisabled:
      return "ist gesperrt"_ansi;
    case Answer::kReadOnly:
      return "ist nur zum Lesen"_ansi;
    case Answer::kWrongKind:
      return "kann das nicht"_ansi;
    case Answer::kNoSuchEntry:
      return "hat das nicht zur Auswahl"_ansi;
    case Answer::kNotOpen:
      return "gehört zu einem geschlossenen Fenster"_ansi;
    case Answer::kBusy:
      return "ist noch beschäftigt"_ansi;
  }
  return "";
}

/// The control as its class, or null.
template <class C>
const C* As(const toolkit::Dialog& dialog, toolkit::ControlId id, Kind kind) {
  const toolkit::Control* control = dialog.Find(id);
  return control != nullptr && control->kind() == kind ? static_cast<const C*>(control) : nullptr;
}

/// Rows that are meant by "3", "2-5" or a label in quotes; false where one of them is none.
bool AddRows(const toolkit::TickList& list, std::string_view meant, std::vector<int>* rows) {
  const int count = static_cast<int>(list.rows().size());
  if (!meant.empty() && meant.front() == '"') {
    const std::string label = Unquote(meant);
    for (int i = 0; i < count; ++i) {
      if (Trim(list.rows()[static_cast<std::size_t>(i)].label) != Trim(label)) continue;
      rows->push_back(i);
      return true;
    }
    return false;
  }
  const std::size_t dash = meant.find('-');
  const std::optional<int> first = ToNumber(meant.substr(0, dash));
  const std::optional<int> last = dash == std::string_view::npos ? first : ToNumber(meant.substr(dash + 1));
  if (!first || !last || *first < 1 || *last > count || *first > *last) return false;
  for (int row = *first; row <= *last; ++row) rows->push_back(row - 1);
  return true;
}

bool IsOn(std::string_view word) { return word == "an" || word == "ein"; }

}  // namespace

const char* DialogHelp() {
  return "7004 = Text        Text eintragen (\"...\" erhält Leerzeichen am Rand)\n"
         "7007               Knopf drücken (auch: drücke 7007)\n"
         "ok / abbruch       die Knöpfe 1 und 2\n"
         "wähle 7006 Hessen  Eintrag wählen (#3: der dritte, -: keiner)\n"
         "haken 7012 an      Kästchen setzen (aus: leeren)\n"
         "haken 7000 1-5,8 an   Zeilen einer Liste; auch \"4711\" für die Zeile dieses Namens\n"
         "zeile 7000 3       Zeile auswählen (-: keine)\n"
         "datum 7020 2.3.2016   Tag setzen (auch: heute)\n"
         "seite 7050 2       Seite aufschlagen\n"
         "zeige [7000 [11 [20]]]   das Fenster, ein Element, eine Liste ab Zeile 11\n"
         "erwarte Text       die nächste Meldung muss diesen Text enthalten (für Skripte)\n"_ansi;
}

void DialogCommands::Send(toolkit::ControlId id, const toolkit::Event& event) {
  const Answer answer = deliver_(event);
  if (answer != Answer::kTaken) {
    terminal_.Refuse("Das Element "_ansi + std::to_string(id) + " " + Explain(answer) + ".");
  }
}

void DialogCommands::Do(std::string_view command) {
  const std::size_t equals = command.find('=');
  if (equals != std::string_view::npos) {
    if (const std::optional<int> id = ToNumber(Trim(command.substr(0, equals)))) {
      Set(*id, command.substr(equals + 1));
      return;
    }
  }
  if (ToNumber(command)) {
    Press(command);
    return;
  }
  std::string_view rest = command;
  const std::string_view verb = TakeWord(&rest);
  if (verb == "ok") return Send(toolkit::kOk, toolkit::Pressed{toolkit::kOk});
  if (verb == "abbruch") return Cancel();
  if (verb == "hilfe") return terminal_.SayLines(DialogHelp(), "  ");
  if (verb == "zeige") return Show(rest);
  if (verb == "drücke"_ansi || verb == "druecke") return Press(rest);
  if (verb == "seite") return TurnPage(rest);

  const bool known = verb == "wähle"_ansi || verb == "waehle" || verb == "haken" || verb == "zeile" || verb == "datum";
  if (!known) return terminal_.Refuse("Unbekannter Befehl: "_ansi + std::string(command) + " (hilfe zeigt alle)");
  const std::optional<int> id = ToNumber(TakeWord(&rest));
  if (!id) return terminal_.Refuse("Hinter "_ansi + std::string(verb) + " gehört die Nummer eines Elements."_ansi);
  if (verb == "haken") return Tick(*id, rest);
  if (verb == "zeile") return SelectRow(*id, rest);
  if (verb == "datum") return SetDay(*id, rest);
  Choose(*id, rest);
}

void DialogCommands::Cancel() {
  const toolkit::Control* button = dialog_.Find(toolkit::kCancel);
  if (button != nullptr && dialog_.Shows(*button)) {
    Send(toolkit::kCancel, toolkit::Pressed{toolkit::kCancel});
  } else {
    Send(toolkit::kCancel, toolkit::Closed{});
  }
}

void DialogCommands::Set(toolkit::ControlId id, std::string_view value) {
  const toolkit::Control* control = dialog_.Find(id);
  const Kind kind = control != nullptr ? control->kind() : Kind::kText;
  if (kind == Kind::kChoice || kind == Kind::kRadioGroup) return Choose(id, Unquote(value));
  if (kind == Kind::kTickBox) return Tick(id, Trim(value));
  if (kind == Kind::kDate) return SetDay(id, Trim(value));
  Send(id, toolkit::Typed{id, Unquote(value)});
}

void DialogCommands::Press(std::string_view what) {
  std::optional<int> id = ToNumber(what);
  if (!id) {
    std::vector<std::string> labels;
    std::vector<int> ids;
    for (const toolkit::Control* control : dialog_.controls()) {
      if (control->kind() != Kind::kButton || !dialog_.Shows(*control)) continue;
      labels.push_back(control->label());
      ids.push_back(control->id());
    }
    const std::optional<int> position = PositionOf(labels, what);
    if (!position) return terminal_.Refuse("Keinen oder mehr als einen Knopf gefunden: "_ansi + std::string(what));
    id = ids[static_cast<std::size_t>(*position)];
  }
  Send(*id, toolkit::Pressed{*id});
}

void DialogCommands::Choose(toolkit::ControlId id, std::string_view label) {
  const auto* group = As<toolkit::RadioGroup>(dialog_, id, Kind::kRadioGroup);
  const auto* list = As<toolkit::ChoiceList>(dialog_, id, Kind::kChoice);
  std::vector<std::string> labels;
  if (group != nullptr) labels = group->options;
  if (list != nullptr) {
    for (const toolkit::ChoiceList::Entry& entry : list->entries()) labels.push_back(entry.label);
  }
  const std::optional<int> position = label == "-" ? std::optional(-1) : PositionOf(labels, label);
  const toolkit::Control* control = dialog_.Find(id);
  // Whether the control takes anything at all comes before whether the entry is there.
  const bool can_look = control != nullptr && control->enabled && dialog_.Shows(*control);
  if (can_look && !position && (group != nullptr || list != nullptr)) {
    return terminal_.Refuse("Das Element "_ansi + std::to_string(id) +
                            " hat keinen oder mehr als einen Eintrag \""_ansi + std::string(label) + "\".");
  }
  if (group != nullptr) return Send(id, toolkit::OptionChosen{id, position.value_or(-1)});
  Send(id, toolkit::EntrySelected{id, position.value_or(-1)});
}

void DialogCommands::Tick(toolkit::ControlId id, std::string_view rest) {
  const std::size_t space = rest.find_last_of(" \t");
  const std::string_view state = space == std::string_view::npos ? rest : rest.substr(space + 1);
  if (!IsOn(state) && state != "aus") return terminal_.Refuse("Am Ende gehört an oder aus."_ansi);
  const std::string_view rows = space == std::string_view::npos ? std::string_view() : Trim(rest.substr(0, space));
  const auto* list = As<toolkit::TickList>(dialog_, id, Kind::kTickList);
  if (list == nullptr) return Send(id, toolkit::BoxTicked{id, IsOn(state)});

  std::vector<int> meant;
  for (std::size_t at = 0; at <= rows.size();) {
    // A comma inside quotes belongs to a label.
    const std::size_t quoted = at < rows.size() && rows[at] == '"' ? rows.find('"', at + 1) : at;
    const std::size_t comma = std::min(rows.find(',', quoted), rows.size());
    const std::string_view one = Trim(rows.substr(at, comma - at));
    if (!AddRows(*list, one, &meant)) {
      return terminal_.Refuse("Die Liste "_ansi + std::to_string(id) + " hat keine Zeile "_ansi + std::string(one) +
                              ".");
    }
    at = comma + 1;
  }
  for (const int row : meant) {
    Send(id, toolkit::RowTicked{id, row, IsOn(state)});
    if (!dialog_.IsOpen()) return;
  }
}

void DialogCommands::SelectRow(toolkit::ControlId id, std::string_view row) {
  const auto* list = As<toolkit::TickList>(dialog_, id, Kind::kTickList);
  std::vector<int> rows;
  if (row == "-" || list == nullptr) {
    rows = {-1};
  } else if (!AddRows(*list, row, &rows) || rows.size() != 1) {
    return terminal_.Refuse("Die Liste "_ansi + std::to_string(id) + " hat keine Zeile "_ansi + std::string(row) + ".");
  }
  Send(id, toolkit::RowSelected{id, rows.front()});
}

void DialogCommands::SetDay(toolkit::ControlId id, std::string_view day) {
  const std::optional<platform::CivilTime> meant = day == "heute" ? clock_.ToLocal(clock_.Now()) : ToDay(day);
  if (!meant) return terminal_.Refuse("Ein Tag schreibt sich TT.MM.JJJJ, oder: heute."_ansi);
  Send(id, toolkit::DaySet{id, *meant});
}

void DialogCommands::TurnPage(std::string_view rest) {
  std::optional<int> id;
  int sheets = 0;
  for (const toolkit::Control* control : dialog_.controls()) {
    if (control->kind() != Kind::kPages || !dialog_.Shows(*control)) continue;
    id = control->id();
    ++sheets;
  }
  // The sheet need not be named where there is only one.
  std::string_view page = rest;
  std::string_view behind = rest;
  const std::optional<int> named = ToNumber(TakeWord(&behind));
  if (named && !behind.empty()) {
    id = named;
    page = behind;
  } else if (sheets != 1) {
    return terminal_.Refuse("seite NUMMER SEITE: Nummer des Seitenelements und der Seite."_ansi);
  }
  const auto* pages = As<toolkit::Pages>(dialog_, *id, Kind::kPages);
  std::optional<int> number = ToNumber(page);
  if (number) --*number;
  if (!number && pages != nullptr) number = PositionOf(pages->captions, page);
  Send(*id, toolkit::PageTurned{*id, number.value_or(-1)});
}

void DialogCommands::Show(std::string_view rest) {
  if (rest.empty()) return view_.ShowAll();
  const std::optional<int> id = ToNumber(TakeWord(&rest));
  const toolkit::Control* control = id ? dialog_.Find(*id) : nullptr;
  if (control == nullptr || !dialog_.Shows(*control)) {
    return terminal_.Refuse("Das Element ist nicht zu sehen."_ansi);
  }
  const std::optional<int> from = rest.empty() ? 1 : ToNumber(TakeWord(&rest));
  const std::optional<int> count = rest.empty() ? 20 : ToNumber(TakeWord(&rest));
  if (!from || !count || !rest.empty()) return terminal_.Refuse("zeige NUMMER [VON [ANZAHL]]"_ansi);
  view_.Show(*control, *from - 1, *count);
}

}  // namespace korvo
