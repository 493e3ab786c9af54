// A project: a folder with a point table. One at a time is open in a process, as the host has it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// The point table of a folder, full path (form inside): "punkte.dbf" in any case of letters; without one the only
/// *.dbf that has the column PT_NO; without one the only *.dbf. Nothing, with the reason in German, where that decides
/// for none.
std::optional<std::string> FindPointTable(std::string_view folder, std::string* why);

struct OpenedProject {
  bool open = false;
  std::string refusal;  ///< why it is not open
  std::string note;     ///< what the person should know of an open project; several lines at most, empty for nothing
};

/// Opens the project in a folder or of a point table (form on disk), fills the host's state and opens its tables. Who
/// opens a project first may work on it, everybody else only look until the first one closes it or ends. All texts are
/// Windows-1252.
OpenedProject OpenProject(const std::string& named_on_disk);

/// Closes the tables and gives the project free; V2_VAR stays valid and has no tables then. Nothing where none is open.
void CloseProject();

/// Name of the project's folder, full path of the folder and of the point table; empty where none is open.
const std::string& ProjectName();
const std::string& ProjectFolder();
std::string PointTablePath();

/// Empty where the project may be worked on, otherwise why it may only be looked at, in German.
const std::string& WhyOnlyLooking();

/// Opens the point table from the disk, since somebody else may have written it or put another in its place; while a
/// plug-in runs only where it is closed, since the plug-in's references to columns end with an opening. False where
/// that fails. The note is that of OpenedProject, or the reason.
bool RefreshPointTable(std::string* note);

}  // namespace korvo
