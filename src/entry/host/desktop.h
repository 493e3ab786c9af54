// Services of the desktop that every dialog takes for granted.
#pragma once

#include <string>

#include "toolkit/desktop.h"

namespace pktaus {

/// The host's main window, or 0. Looked up anew in every call.
toolkit::Window host_window();

/// A modal message box under the host's main window. Texts in Windows-1252; `flags` as in toolkit/desktop.h.
int message_box(const std::string& text, const std::string& title, unsigned flags = toolkit::kBoxOk);

/// Shows a title and a text under the host's main window and waits. Line breaks are the caller's, as a rule "\r\r\n".
int text_view(const char* title, const char* text);
/// The same without a parent, over whatever dialog is open.
int free_text_view(const char* title, const char* text);

/// The folder of the plug-in's library: settings, catalogues and templates lie there. No separator at its end.
std::string plugin_folder();
/// Sets another folder for tests that run without the library; empty sets the library's own.
void SetPluginFolder(std::string folder);

/// Runs a dialog under the host's main window, or under none.
int RunUnderHost(toolkit::Dialog& dialog);

/// Picks a file. `filter` holds pairs of description and pattern, each NUL-terminated, closed by a further NUL. 0 and
/// `path` (and `index`, from 0, where given) set; 1 when the user cancelled, both untouched. A path of more than 999
/// characters is reported as an overflow and counts as cancelled.
int file_dialog(bool save, const char* title, std::string* path, const char* filter, int* index = nullptr);

/// Picks a folder; `path` then ends in a separator. False when the user cancelled, `path` untouched.
bool folder_dialog(toolkit::Window parent, std::string* path, const char* title);

}  // namespace pktaus
