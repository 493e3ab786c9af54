#include "korvo/host/project.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/path.h"
#include "base/text.h"
#include "korvo/host/points.h"
#include "korvo/host/state.h"
#include "platform/system.h"

namespace korvo {

using namespace text::literals;

namespace {

// The host's handle has 72 bytes for a path, and the paths of derived files are built in 70; both with the zero.
constexpr std::size_t kMaxTablePath = 71;
constexpr std::size_t kMaxDerivedPath = 69;
constexpr std::size_t kDerivedExtension = 3;

bool HasPointNumbers(const std::string& path) {
  Table table;
  std::string why;
  return table.Open(path, false, &why) && table.Find("PT_NO") >= 0;
}

std::string LastError() { return platform::SystemErrorText(platform::LastSystemError()); }

std::string UnknownCharacters(const std::string& on_disk) {
  return std::string("Der Pfad "_ansi) + text::FromUtf8Lossy(on_disk) +
         " enthält Zeichen, die Korvo nicht kennt (nicht in Windows-1252)."_ansi;
}

std::string NoFile(const std::string& on_disk) { return text::FromUtf8Lossy(on_disk) + ": Es ist keine Datei."; }

/// Why a folder has no table that could be opened.
std::string WhyNoTable(std::string_view folder) {
  const std::string on_disk = path::ToDisk(folder);
  std::vector<std::string> entries;
  if (!platform::Files().List(on_disk, &entries)) {
    return std::string("Der Ordner "_ansi) + std::string(folder) + " kann nicht gelesen werden: "_ansi + LastError();
  }
  for (const std::string& entry : entries) {
    if (!path::Matches(entry, "*.dbf")) continue;
    const std::string table = path::Join(on_disk, entry);
    return path::FromDisk(entry) ? NoFile(table) : UnknownCharacters(table);
  }
  return std::string("Im Ordner "_ansi) + std::string(folder) + " liegt keine Punkttabelle (*.dbf)."_ansi;
}

/// Folder and table of what the person named, which is a folder or the table itself.
bool Locate(const std::string& named_on_disk, std::string* folder, std::string* table, std::string* why) {
  std::string real;
  platform::FileFacts facts;
  if (!platform::Files().RealPath(named_on_disk, &real) || !platform::Files().PathFacts(real, &facts)) {
    *why = text::FromUtf8Lossy(named_on_disk) + ": " + LastError();
    return false;
  }
  // A full path stays as the person wrote it: behind a link it may be shorter than the real one.
  std::string full = named_on_disk.front() == '/' ? named_on_disk : real;
  while (full.size() > 1 && full.back() == '/') full.pop_back();
  const std::optional<std::string> inside = path::FromDisk(full);
  if (!inside) {
    *why = UnknownCharacters(full);
    return false;
  }
  if (facts.kind_folder) {
    *folder = *inside;
    const std::optional<std::string> found = FindPointTable(*folder, why);
    if (found) *table = *found;
    return found.has_value();
  }
  *table = *inside;
  *folder = path::Folder(*inside);
  if (folder->empty() || !path::Matches(path::FileName(*table), "*.dbf")) {
    *why = *table + " ist weder ein Projektordner noch eine Punkttabelle (*.dbf)."_ansi;
    return false;
  }
  if (!facts.kind_file) {
    *why = NoFile(full);
    return false;
  }
  return true;
}

std::size_t DerivedLength(std::string_view table) {
  const std::string_view name = path::FileName(table);
  const std::size_t dot = name.rfind('.');
  return table.size() - (dot == std::string_view::npos ? 0 : name.size() - dot) + 1 + kDerivedExtension;
}

bool FitsHost(const std::string& table, std::string* why) {
  if (table.size() <= kMaxTablePath && DerivedLength(table) <= kMaxDerivedPath) return true;
  *why =
      std::string("Der Pfad der Punkttabelle ist zu lang: "_ansi) + table + " hat "_ansi +
      std::to_string(table.size()) + " Zeichen, Korvo verarbeitet höchstens "_ansi + std::to_string(kMaxDerivedPath) +
      ". Legen Sie das Projekt in einen kürzeren Ordner, oder öffnen Sie es über eine Verknüpfung mit kurzem Pfad."_ansi;
  return false;
}

void SetPath(TableSlot& slot, const std::string& path) {
  slot.handle.path[path.copy(slot.handle.path, kMaxTablePath)] = '\0';
}

/// The other tables of a project stand beside the point table, under its name.
bool HasCompanion(TableSlot& slot, const std::string& points, const char* extension) {
  const std::string path = points.substr(0, points.size() - std::strlen("dbf")) + extension;
  if (!platform::FileExists(path)) return false;
  SetPath(slot, path);
  return true;
}

std::string NoteOnLongNumbers(Host& host) {
  Table& table = host.points.table;
  constexpr int kLongest = sizeof(HostPoint::pt_no) - 1;
  if (host.pt_no < 0 || table.columns()[static_cast<std::size_t>(host.pt_no)].width <= kLongest) return {};
  std::int32_t left_out = 0;
  for (std::int32_t i = 1; i <= table.count(); ++i) {
    std::string_view record;
    HostPoint point;
    if (table.Read(i, &record) == Table::Got::kRead && !ReadPoint(i, &point)) ++left_out;
  }
  if (left_out == 0) return {};
  if (left_out == 1) return "1 Punkt hat eine Nummer mit mehr als 15 Zeichen und wird übergangen."_ansi;
  return std::to_string(left_out) + " Punkte haben Nummern mit mehr als 15 Zeichen und werden übergangen."_ansi;
}

std::string NoteOnMissingRecords(const Table& table) {
  const auto there = static_cast<std::uint32_t>(table.count());
  if (there >= table.promised()) return {};
  return std::string("Die Punkttabelle ist unvollständig. Sätze laut Dateikopf: "_ansi) +
         std::to_string(table.promised()) + ", vorhanden: " + std::to_string(there) + ".";
}

void AddLine(std::string* lines, const std::string& line) {
  if (!line.empty() && !lines->empty()) *lines += '\n';
  *lines += line;
}

/// Opens the point table from the disk and adds what the person should know of it. False where it cannot be read.
bool OpenWithNote(Host& host, std::string* note) {
  std::string why;
  const bool was_working = host.only_looking.empty();
  if (!OpenPoints(host, &why)) {
    AddLine(note, std::string("Die Punkttabelle ist nicht lesbar: "_ansi) + why);
    return false;
  }
  if (was_working) AddLine(note, host.only_looking);
  if (host.only_looking.empty() && !host.points.table.writable()) {
    AddLine(note, "Die Punkttabelle ist schreibgeschützt."_ansi);
  }
  AddLine(note, NoteOnMissingRecords(host.points.table));
  AddLine(note, NoteOnLongNumbers(host));
  return true;
}

}  // namespace

std::optional<std::string> FindPointTable(std::string_view folder, std::string* why) {
  std::vector<std::string> tables = platform::ListFiles(folder, "*.dbf");
  for (const std::string& name : tables) {
    if (text::EqualIgnoringCase(name, "punkte.dbf")) return path::Join(folder, name);
  }
  if (tables.size() > 1) {
    std::vector<std::string> with_points;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(with_points),
                 [&](const std::string& name) { return HasPointNumbers(path::Join(folder, name)); });
    if (!with_points.empty()) tables = with_points;
  }
  if (tables.size() == 1) return path::Join(folder, tables.front());
  if (tables.empty()) {
    *why = WhyNoTable(folder);
    return std::nullopt;
  }
  *why = std::string("Im Ordner "_ansi) + std::string(folder) +
         " liegen mehrere Tabellen. Öffnen Sie die Punkttabelle selbst, oder nennen Sie sie punkte.dbf: "_ansi;
  for (const std::string& name : tables) *why += (&name == &tables.front() ? "" : ", ") + name;
  return std::nullopt;
}

OpenedProject OpenProject(const std::string& named_on_disk) {
  CloseProject();
  OpenedProject opened;
  Host& host = TheHost();
  std::string folder;
  std::string table;
  if (named_on_disk.empty() || !Locate(named_on_disk, &folder, &table, &opened.refusal)) return opened;
  if (!FitsHost(table, &opened.refusal)) return opened;
  platform::File readable;
  if (!readable.Open(table, platform::OpenMode::kRead)) {
    opened.refusal = std::string("Die Punkttabelle "_ansi) + table + " kann nicht geöffnet werden: "_ansi + LastError();
    return opened;
  }
  readable.Close();

  if (!host.lock.Take(path::ToDisk(table), &opened.note)) host.only_looking = opened.note;
  host.folder = folder;
  host.name = path::FileName(folder);
  SetPath(host.points, table);
  host.state.points = &host.points.handle;
  // A table that is no regular one is the plug-in's to judge, in its own words.
  OpenWithNote(host, &opened.note);
  std::string why;
  if (HasCompanion(host.dba, table, "dba") && OpenOther(host, host.dba, &why)) host.state.dba = &host.dba.handle;
  if (HasCompanion(host.dbv, table, "dbv") && OpenOther(host, host.dbv, &why)) host.state.dbv = &host.dbv.handle;
  if (HasCompanion(host.dbh, table, "dbh") && OpenOther(host, host.dbh, &why)) host.state.dbh = &host.dbh.handle;
  opened.open = true;
  return opened;
}

void CloseProject() {
  Host& host = TheHost();
  host.state = HostState{};
  for (TableSlot* slot : {&host.points, &host.dba, &host.dbv, &host.dbh}) {
    CloseOther(host, *slot);
    slot->handle = HostTable{};
  }
  host.lock.Release();
  host.name.clear();
  host.folder.clear();
  host.only_looking.clear();
}

const std::string& ProjectName() { return TheHost().name; }
const std::string& ProjectFolder() { return TheHost().folder; }
std::string PointTablePath() { return TheHost().points.handle.path; }
const std::string& WhyOnlyLooking() { return TheHost().only_looking; }

bool RefreshPointTable(std::string* note) {
  Host& host = TheHost();
  note->clear();
  if (host.folder.empty()) {
    *note = "Es ist kein Projekt geöffnet."_ansi;
    return false;
  }
  return (host.plugin_runs && host.points.table.IsOpen()) || OpenWithNote(host, note);
}

}  // namespace korvo
