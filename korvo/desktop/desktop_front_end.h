// The front end of the host with windows, mouse and keyboard.
#pragma once

#include <QDateTime>
#include <QString>
#include <string>
#include <vector>

#include "korvo/desktop/shell.h"
#include "korvo/host/front_end.h"

class QDialog;
class QWidget;

namespace korvo {

class DialogWindow;
class ModalGuard;
class Picker;

class DesktopFrontEnd : public FrontEnd {
 public:
  /// All must outlive the front end.
  DesktopFrontEnd(Shell& shell, Waits& waits, const platform::Clock& clock);
  ~DesktopFrontEnd() override;

  int ChooseFromMenu(const Menu& menu) override;
  bool PickPoint(HostPoint* point) override;
  void PointChanged(std::int32_t number) override;

  void Run(toolkit::Dialog& dialog, toolkit::Window parent) override;
  int ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window parent) override;
  bool PickFile(const toolkit::FilePick& pick, std::string* path, int* filter) override;
  bool PickFolder(const std::string& title, toolkit::Window parent, std::string* path) override;
  std::vector<toolkit::WindowInfo> TopLevelWindows() override;
  toolkit::Window FindWindow(const std::string& class_name, const std::string& title) override;
  toolkit::Window ForegroundWindow() override;
  const platform::Clock& Clock() override { return clock_; }

  /// The window that the person has to answer; null for none.
  QDialog* front() const;

 private:
  /// The widget above which something opens: the one in front, else the window that was asked for.
  QWidget* Below(toolkit::Window parent) const;
  /// Brings the open dialogs up to date before something opens above them.
  void ShowDialogs();
  /// Runs a picker until it has a path that the plug-in can be told; empty, and `path` untouched, when the person
  /// cancelled.
  QString RunPicker(Picker* picker, bool ask_before_overwrite, std::string* path);
  /// Whether the plug-in can be told the path; where it cannot, the person is told why.
  bool CanTell(const QString& path);
  bool MayOverwrite(const QString& path);
  /// Looks whether the file of the last save picker has been written since.
  void TellSaved();

  Shell& shell_;
  Waits& waits_;
  const platform::Clock& clock_;
  ModalGuard& guard_;
  std::vector<DialogWindow*> windows_;  ///< open dialogs, the innermost last
  QString saved_path_;
  QDateTime saved_before_;  ///< when the file was last written before the picker; not valid where it was not there
};

}  // namespace korvo
