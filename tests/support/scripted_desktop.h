// A desktop that a test plays: it answers boxes and pickers as told and hands dialogs to the test.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

#include "entry/host/host.h"
#include "toolkit/desktop.h"

namespace support {

/// The desktop in force while it lives.
class ScriptedDesktop : public toolkit::Desktop {
 public:
  struct Box {
    std::string text, title;
    unsigned flags = 0;
    bool operator==(const Box&) const = default;
  };

  ScriptedDesktop() : before_(std::exchange(korvo_desktop, this)) {}
  ~ScriptedDesktop() override { korvo_desktop = before_; }

  /// What was shown, in order.
  std::vector<Box> boxes;
  std::vector<toolkit::FilePick> picks;
  std::vector<int> dialogs;

  /// What comes next: answers of boxes (kAnswerOk when there is none left), paths of pickers (no path, or none left:
  /// cancelled), and what a person does in a dialog (none left: it is closed).
  std::deque<int> answers;
  std::deque<std::optional<std::string>> paths;
  std::deque<std::function<void(toolkit::Dialog&)>> persons;

  /// Windows of the desktop, and what FindWindow gives for a class and a title.
  std::vector<toolkit::WindowInfo> windows;

  void Run(toolkit::Dialog& dialog, toolkit::Window) override {
    dialogs.push_back(dialog.number());
    if (!persons.empty()) Next (&persons)(dialog);
    if (dialog.IsOpen()) dialog.Handle(toolkit::Closed{});
  }
  int ShowBox(const std::string& text, const std::string& title, unsigned flags, toolkit::Window) override {
    boxes.push_back({text, title, flags});
    return answers.empty() ? toolkit::kAnswerOk : Next(&answers);
  }
  bool PickFile(const toolkit::FilePick& pick, std::string* path, int* filter) override {
    picks.push_back(pick);
    *filter = 0;
    return NextPath(path);
  }
  bool PickFolder(const std::string&, toolkit::Window, std::string* path) override { return NextPath(path); }
  std::vector<toolkit::WindowInfo> TopLevelWindows() override { return windows; }
  toolkit::Window FindWindow(const std::string& kind, const std::string& title) override {
    const auto fits = [&](const auto& info) { return info.class_name == kind && info.title == title; };
    const auto found = std::find_if(windows.begin(), windows.end(), fits);
    return found == windows.end() ? 0 : found->window;
  }
  toolkit::Window ForegroundWindow() override { return 0; }
  const platform::Clock& Clock() override { return platform::CurrentClock(); }

 private:
  /// Takes the first of what is to come.
  template <typename T>
  static T Next(std::deque<T>* queue) {
    T next = std::move(queue->front());
    queue->pop_front();
    return next;
  }
  bool NextPath(std::string* path) {
    const std::optional<std::string> next = paths.empty() ? std::nullopt : Next(&paths);
    if (next) *path = *next;
    return next.has_value();
  }

  toolkit::Desktop* before_;
};

}  // namespace support
