#include "korvo/console/console.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "base/path.h"
#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/console/dialog_commands.h"
#include "korvo/console/dialog_view.h"
#include "korvo/dbase/table.h"
#include "korvo/host/plugin.h"
#include "korvo/host/points.h"
#include "korvo/host/project.h"
#include "korvo/words/words.h"
#include "platform/file.h"
#include "platform/save.h"

namespace korvo {

using namespace text::literals;

namespace {

constexpr toolkit::Window kMainWindow = 1;
constexpr const char* kWindowClass = "GD_WIN32";
constexpr int kMostListed = 200;
/// Where the pickers stood last, for a person who comes back to a project.
constexpr const char* kFolderFile = "korvo.ordner";

std::string WindowTitle() { return "Korvo – "_ansi + ProjectName(); }

std::string Metres(double value, int width) {
  std::string text;
  return FormatNumber(value, width, 3, &text) ? text : std::string("?");
}

std::string PointLine(const HostPoint& point) {
  std::string number = point.pt_no;
  number.resize(std::max<std::size_t>(number.size(), sizeof point.pt_no), ' ');
  return number + Metres(point.east, 14) + " " + Metres(point.north, 14) + " " + Metres(point.elev, 10);
}

std::string WorkingFolder() {
  std::array<char, 4096> buffer{};
  return getcwd(buffer.data(), buffer.size()) != nullptr ? path::FromDisk(buffer.data()).value_or("/") : "/";
}

struct BoxButton {
  const char* word;
  int answer;
};

std::vector<BoxButton> ButtonsOf(unsigned flags) {
  switch (flags & 0x0FU) {
    case toolkit::kBoxOkCancel:
      return {{"ok", toolkit::kAnswerOk}, {"abbruch", toolkit::kAnswerCancel}};
    case toolkit::kBoxYesNoCancel:
      return {{"ja", toolkit::kAnswerYes}, {"nein", toolkit::kAnswerNo}, {"abbruch", toolkit::kAnswerCancel}};
    case toolkit::kBoxYesNo:
      return {{"ja", toolkit::kAnswerYes}, {"nein", toolkit::kAnswerNo}};
    default:
      return {{"ok", toolkit::kAnswerOk}};
  }
}

const char* IconOf(unsigned flags) {
  switch (flags & 0xF0U) {
    case toolkit::kBoxError:
      return "Fehler: ";
    case toolkit::kBoxQuestion:
      return "Frage: ";
    case toolkit::kBoxWarning:
      return "Warnung: ";
    default:
      return "";
  }
}

bool IsFolder(const std::string& path) {
  platform::FileFacts facts;
  return platform::Files().PathFacts(path::ToDisk(path), &facts) && facts.kind_folder;
}

const char* TopHelp() {
  return "start            das Modul für die ALKIS-Angaben starten\n"
         "punkte [MUSTER]  Punkte zeigen, deren Nummer zum Muster passt (* und ?)\n"
         "punkt NUMMER     alle Spalten eines Punkts zeigen\n"
         "ende             Projekt schließen\n"_ansi;
}

}  // namespace

void Console::RunTopLevel(const std::string& library) {
  terminal_.Say(WindowTitle());
  terminal_.Say("Punkttabelle: "_ansi + PointTablePath());
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask("Korvo> ", Terminal::AtEnd::kGoOn);
    if (!command) break;
    if (*command == "ende") {
      if (!terminal_.person() && terminal_.Ask("Korvo> ", Terminal::AtEnd::kGoOn)) {
        terminal_.Refuse("Hinter ende steht noch etwas."_ansi);
      }
      break;
    }
    std::string why;
    if (*command == "start") {
      if (!RunPlugin(library, &why)) terminal_.Refuse(why);
    } else if (*command == "hilfe") {
      terminal_.SayLines(TopHelp(), "  ");
    } else if (!DoPointCommand(*command)) {
      terminal_.Refuse("Unbekannter Befehl: "_ansi + *command + " (hilfe zeigt alle)");
    }
  }
  terminal_.EndOfScript();
}

bool Console::DoPointCommand(std::string_view command) {
  std::string_view rest = command;
  const std::string_view verb = TakeWord(&rest);
  if (verb != "punkte" && verb != "punkt") return false;
  std::string note;
  if (!RefreshPointTable(&note)) {
    terminal_.Refuse(note);
  } else if (verb == "punkte") {
    ListPoints(rest.empty() ? "*" : Unquote(rest));
  } else {
    ShowPoint(Unquote(rest));
  }
  return true;
}

void Console::ListPoints(const std::string& pattern) {
  int fitting = 0;
  for (std::int32_t i = 1; i <= PointRecords(); ++i) {
    HostPoint point;
    if (!ReadPoint(i, &point) || !path::Matches(Trim(point.pt_no), pattern)) continue;
    if (++fitting <= kMostListed) terminal_.Say("  " + PointLine(point));
  }
  if (fitting > kMostListed) terminal_.Say("  ...");
  terminal_.Say(std::to_string(fitting) + (fitting == 1 ? " Punkt" : " Punkte"));
}

void Console::ShowPoint(const std::string& number) {
  HostPoint point;
  const std::int32_t record = FindPoint(number, &point);
  if (record == 0) return terminal_.Refuse("Die Tabelle hat keinen Punkt "_ansi + number + ".");
  terminal_.Say("Satz " + std::to_string(record));
  for (const auto& [name, value] : PointColumns(record)) {
    std::string column = name;
    column.resize(std::max<std::size_t>(column.size(), 12), ' ');
    terminal_.Say("  " + column + value);
  }
}

int Console::ChooseFromMenu(const Menu& menu) {
  std::vector<std::string> labels;
  for (const Menu::Entry& entry : menu.entries) labels.push_back(entry.text);
  terminal_.Say("");
  terminal_.Say("--- " + menu.title + " ---");
  for (const Menu::Entry& entry : menu.entries) {
    terminal_.Say((entry.number < 10 ? "   " : "  ") + std::to_string(entry.number) + "  " + entry.text);
  }
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask("Menü> "_ansi);
    if (!command) return 0;
    const std::optional<int> number = ToNumber(*command);
    const std::optional<int> position = number ? std::nullopt : PositionOf(labels, *command);
    for (std::size_t i = 0; i < menu.entries.size(); ++i) {
      if (number == menu.entries[i].number || position == static_cast<int>(i)) return menu.entries[i].number;
    }
    if (*command == "hilfe") {
      terminal_.Say("  Nummer oder Name eines Eintrags"_ansi);
    } else {
      terminal_.Refuse("Das Menü hat keinen Eintrag "_ansi + *command + ".");
    }
  }
}

bool Console::PickPoint(HostPoint* point) {
  terminal_.Say("");
  terminal_.Say(
      "Punkt wählen: Punktnummer, oder Rechtswert und Hochwert für den nächsten Punkt (Schluss mit: ende)"_ansi);
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask("Punkt> ");
    if (!command || *command == "ende" || *command == "abbruch") return false;
    if (*command == "hilfe") {
      terminal_.SayLines(
          "PUNKTNUMMER      auch in \"...\"\n32649902.7 5650976.1   der nächste Punkt\n"
          "punkte [MUSTER]  punkt NUMMER   ende\n"_ansi,
          "  ");
    } else if (!DoPointCommand(*command) && PickByCommand(*command, point)) {
      return true;
    }
  }
}

bool Console::PickByCommand(std::string_view command, HostPoint* point) {
  HostPoint found;
  std::int32_t record = FindPoint(Unquote(command), &found);
  if (record == 0) {
    std::string_view rest = command;
    const std::optional<double> east = ToMetres(TakeWord(&rest));
    const std::optional<double> north = ToMetres(rest);
    const std::int32_t nearest = east && north ? NearestPoint(*east, *north, &found) : 0;
    if (nearest == 0) {
      terminal_.Refuse("Die Tabelle hat keinen Punkt "_ansi + std::string(command) + ".");
      return false;
    }
    terminal_.Say("Entfernung: "_ansi +
                  std::string(Trim(Metres(std::hypot(found.east - *east, found.north - *north), 20))) + " m");
    record = FindPoint(found.pt_no, &found);
    if (record != nearest) {
      terminal_.Say("Die Nummer steht mehrfach in der Tabelle; gewählt ist ihr erster Punkt."_ansi);
    }
  }
  terminal_.Say("Punkt " + PointLine(found));
  *point = found;
  return true;
}

void Console::Run(toolkit::Dialog& dialog, toolkit::Window /*parent*/) {
  DialogView view(terminal_, dialog);
  DialogCommands commands(terminal_, dialog, view, clock_,
                          [&dialog](const toolkit::Event& event) { return dialog.Handle(event); });
  view.ShowAll();
  while (dialog.IsOpen()) {
    const std::optional<std::string> command = terminal_.Ask(std::to_string(dialog.number()) + "> ");
    commands.Do(command ? *command : "abbruch");
    if (dialog.IsOpen()) view.ShowChanges();
  }
}

int Console::ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window /*parent*/) {
  const std::vector<BoxButton> buttons = ButtonsOf(flags);
  std::string words;
  for (const BoxButton& button : buttons) words += std::string(words.empty() ? "" : "/") + button.word;
  terminal_.Say("");
  terminal_.Say(std::string("+-- ") + IconOf(flags) + title);
  terminal_.SayLines(text, "| ");
  terminal_.Say("+-- " + words);
  terminal_.MeetBox(title, text);
  const bool only_ok = buttons.size() == 1;
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask(words + "> ", Terminal::AtEnd::kStop, only_ok);
    if (!command) return only_ok ? toolkit::kAnswerOk : toolkit::kAnswerCancel;
    if (command->empty()) return toolkit::kAnswerOk;
    for (const BoxButton& button : buttons) {
      if (text::EqualIgnoringCase(*command, button.word)) return button.answer;
    }
    terminal_.Refuse("Die Antwort ist "_ansi + words + ".");
  }
}

std::string Console::FullPath(std::string_view typed) {
  const std::string path = Unquote(typed);
  const char* home = std::getenv("HOME");
  if (path.starts_with("~/") && home != nullptr) {
    return path::Join(path::FromDisk(home).value_or("/"), path.substr(2));
  }
  return path::IsAbsolute(path) ? path : path::Join(last_folder_, path);
}

void Console::RememberFolder(std::string folder) {
  last_folder_ = std::move(folder);
  if (!terminal_.person() || !WhyOnlyLooking().empty()) return;
  platform::FileSaver saver;  // a nicety: what comes of it is no matter
  if (saver.Open(path::Join(ProjectFolder(), kFolderFile)) && saver.Write(path::ToDisk(last_folder_))) saver.Commit();
}

std::string Console::WhyNoFile(const toolkit::FilePick& pick, const std::string& path) const {
  if (IsFolder(path)) return "Das ist ein Ordner: "_ansi + path;
  if (!pick.save) return platform::FileExists(path) ? "" : "Es gibt keine Datei "_ansi + path;
  const std::string folder(path::Folder(path));
  if (!IsFolder(folder)) return "Es gibt keinen Ordner "_ansi + folder;
  return {};
}

bool Console::MayWrite(const toolkit::FilePick& pick, const std::string& path) {
  if (!pick.save || !pick.ask_before_overwrite || !platform::FileExists(path)) return true;
  terminal_.Say("Die Datei gibt es schon: "_ansi + path);
  for (;;) {
    const std::optional<std::string> answer = terminal_.Ask("Überschreiben? ja/nein> "_ansi);
    if (!answer || text::EqualIgnoringCase(*answer, "nein")) return false;
    if (text::EqualIgnoringCase(*answer, "ja")) return true;
    terminal_.Refuse("Die Antwort ist ja oder nein."_ansi);
  }
}

bool Console::PickFile(const toolkit::FilePick& pick, std::string* path, int* filter) {
  if (last_folder_.empty()) {
    platform::File remembered;
    std::array<char, 4096> bytes{};
    if (terminal_.person() && remembered.Open(path::Join(ProjectFolder(), kFolderFile), platform::OpenMode::kRead)) {
      const std::int64_t got = remembered.Read(bytes.data(), bytes.size());
      last_folder_ =
          path::FromDisk({bytes.data(), static_cast<std::size_t>(std::max<std::int64_t>(got, 0))}).value_or("");
    }
    if (!IsFolder(last_folder_)) last_folder_ = WorkingFolder();
  }
  terminal_.Say("");
  terminal_.Say((pick.save ? "Datei speichern: " : "Datei öffnen: "_ansi) + pick.title);
  for (const toolkit::FileFilter& one : pick.filters) terminal_.Say("  " + one.description + "  " + one.pattern);
  terminal_.Say("  Ordner: "_ansi + last_folder_);
  if (!pick.path.empty()) terminal_.Say("  Vorschlag: "_ansi + pick.path);
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask("Datei> ");
    if (!command || *command == "abbruch") return false;
    std::string chosen = FullPath(*command);
    const bool bare = path::FileName(chosen).find('.') == std::string_view::npos;
    if (pick.save && bare && !pick.default_extension.empty() && pick.default_extension != "*") {
      chosen += "." + pick.default_extension;
    }
    const std::string why = WhyNoFile(pick, chosen);
    if (!why.empty()) {
      terminal_.Refuse(why);
    } else if (MayWrite(pick, chosen)) {
      RememberFolder(std::string(path::Folder(chosen)));
      *path = chosen;
      if (filter != nullptr) *filter = 0;
      return true;
    }
  }
}

bool Console::PickFolder(const std::string& title, toolkit::Window /*parent*/, std::string* path) {
  if (last_folder_.empty()) last_folder_ = WorkingFolder();
  terminal_.Say("");
  terminal_.Say("Ordner wählen: "_ansi + title);
  terminal_.Say("  Ordner: "_ansi + last_folder_);
  for (;;) {
    const std::optional<std::string> command = terminal_.Ask("Ordner> ");
    if (!command || *command == "abbruch") return false;
    const std::string chosen = FullPath(*command);
    if (IsFolder(chosen)) {
      RememberFolder(chosen);
      *path = chosen;
      return true;
    }
    terminal_.Refuse("Es gibt keinen Ordner "_ansi + chosen);
  }
}

std::vector<toolkit::WindowInfo> Console::TopLevelWindows() { return {{kMainWindow, WindowTitle(), kWindowClass}}; }

toolkit::Window Console::FindWindow(const std::string& class_name, const std::string& title) {
  return class_name == kWindowClass && title == WindowTitle() ? kMainWindow : 0;
}

toolkit::Window Console::ForegroundWindow() { return kMainWindow; }

}  // namespace korvo
