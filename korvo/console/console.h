// The front end of the host in lines of text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvo/console/terminal.h"
#include "korvo/host/front_end.h"

namespace korvo {

class Console : public FrontEnd {
 public:
  /// Both must outlive the console.
  Console(Terminal& terminal, const platform::Clock& clock) : terminal_(terminal), clock_(clock) {}

  /// The host's own commands, until the person leaves. `library` is the plug-in, path on disk.
  void RunTopLevel(const std::string& library);

  int ChooseFromMenu(const Menu& menu) override;
  bool PickPoint(HostPoint* point) override;
  void Run(toolkit::Dialog& dialog, toolkit::Window parent) override;
  int ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window parent) override;
  bool PickFile(const toolkit::FilePick& pick, std::string* path, int* filter) override;
  bool PickFolder(const std::string& title, toolkit::Window parent, std::string* path) override;
  std::vector<toolkit::WindowInfo> TopLevelWindows() override;
  toolkit::Window FindWindow(const std::string& class_name, const std::string& title) override;
  toolkit::Window ForegroundWindow() override;
  const platform::Clock& Clock() override { return clock_; }

 private:
  /// "punkte" and "punkt"; false where the command is neither.
  bool DoPointCommand(std::string_view command);
  void ListPoints(const std::string& pattern);
  void ShowPoint(const std::string& number);
  bool PickByCommand(std::string_view command, HostPoint* point);

  std::string FullPath(std::string_view typed);
  void RememberFolder(std::string folder);
  /// Empty where the path will do, otherwise why not.
  std::string WhyNoFile(const toolkit::FilePick& pick, const std::string& path) const;
  /// Asks where a file would be overwritten.
  bool MayWrite(const toolkit::FilePick& pick, const std::string& path);

  Terminal& terminal_;
  const platform::Clock& clock_;
  std::string last_folder_;  ///< of the pickers; empty before the first
};

}  // namespace korvo
