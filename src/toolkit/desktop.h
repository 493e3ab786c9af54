// What a front end gives: dialogs, boxes, pickers, windows and the time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "toolkit/dialog.h"

namespace toolkit {

/// A top-level window; 0 is none.
using Window = std::intptr_t;

struct WindowInfo {
  Window window = 0;
  std::string title;  ///< Windows-1252
  std::string class_name;
};

/// Flags of a message box: buttons in the low four bits, icon above, then which button Enter means if not the first.
/// The values are the system's own.
inline constexpr unsigned kBoxOk = 0x00;
inline constexpr unsigned kBoxOkCancel = 0x01;
inline constexpr unsigned kBoxYesNoCancel = 0x03;
inline constexpr unsigned kBoxYesNo = 0x04;
inline constexpr unsigned kBoxError = 0x10;
inline constexpr unsigned kBoxQuestion = 0x20;
inline constexpr unsigned kBoxWarning = 0x30;
inline constexpr unsigned kBoxInformation = 0x40;
inline constexpr unsigned kBoxSecondIsDefault = 0x100;

/// Answers of a message box, the system's own values. A box closed without a button answers kAnswerCancel, or
/// kAnswerOk where it has no other button. A person cannot close one that has neither OK nor Cancel, only leave all.
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerCancel = 2;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

struct FileFilter {
  std::string description;
  std::string pattern;
};

/// What a file picker is asked for. All texts are Windows-1252.
struct FilePick {
  bool save = false;
  Window owner = 0;
  std::string title;
  std::string path;  ///< file name that the picker starts with
  std::vector<FileFilter> filters;
  std::string default_extension;  ///< "*" adds none
  bool ask_before_overwrite = true;
};

/// A front end. Owned by the host's program; the plug-in only calls it. All calls come on the host's one thread and
/// block until the person has answered.
class Desktop {
 public:
  virtual ~Desktop() = default;
  /// Shows an open dialog under `parent` (0 for none) and sends it events until it is no longer open.
  virtual void Run(Dialog& dialog, Window parent) = 0;
  virtual int ShowBox(const std::string& text, const std::string& title, unsigned flags, Window parent) = 0;
  /// False when the person cancelled; `path` and `filter` (index from 0) are untouched then.
  virtual bool PickFile(const FilePick& pick, std::string* path, int* filter) = 0;
  virtual bool PickFolder(const std::string& title, Window parent, std::string* path) = 0;
  virtual std::vector<WindowInfo> TopLevelWindows() = 0;
  /// The first window of that class with exactly that title, or 0.
  virtual Window FindWindow(const std::string& class_name, const std::string& title) = 0;
  virtual Window ForegroundWindow() = 0;
  virtual const platform::Clock& Clock() = 0;
};

/// Opens a dialog, runs it to its end and gives its result. What a rule of the dialog threw is raised here, behind the
/// front end's loop. A dialog that ends while it opens is never shown.
int RunModal(Desktop& desktop, Dialog& dialog, Window parent);

}  // namespace toolkit
