// The seam between the plug-in's calls, which wait for the person, and the main window, in which the person works.
#pragma once

#include <QEventLoop>
#include <QTimer>
#include <cstdint>
#include <exception>
#include <functional>
#include <vector>

#include "korvo/desktop/fault_handlers.h"
#include "korvo/host/front_end.h"

class QString;
class QWidget;

namespace korvo {

class ModalGuard;

/// The main window as the front end sees it. All calls come on the one thread, and none of them waits.
class Shell {
 public:
  virtual ~Shell() = default;
  /// The top-level widget: boxes and dialogs stand above it, and its title is the one that a plug-in looks for.
  virtual QWidget* Widget() = 0;
  /// Keeps the person in what opens above the window, whoever opens it.
  virtual ModalGuard& Guard() = 0;

  /// Offers the entries of the menu until HideMenu; a chosen one goes to Waits::Choose.
  virtual void ShowMenu(const Menu& menu) = 0;
  virtual void HideMenu() = 0;

  /// Lets the person pick a point until EndPick; the point goes to Waits::Pick.
  virtual void BeginPick() = 0;
  virtual void EndPick() = 0;

  /// Record `number` (from 1) of the point table was written; 0: the table was opened anew, all of it may be different.
  virtual void PointChanged(std::int32_t number) = 0;
  /// A message for the status line.
  virtual void ShowMessage(const QString& text) = 0;
  /// A file that a picker was asked for has been written, and the box that told so is closed.
  virtual void FileSaved(const QString& path) = 0;
};

/// The event loops in which the plug-in, or the main window, waits for the person, one inside the other. Nothing is
/// thrown through them: what a callback throws is kept and raised behind the loop that it was called from. During a
/// wait machine faults find the handlers that stood before any plug-in was started, so that none of its own jumps over
/// the loop.
class Waits {
 public:
  Waits();
  Waits(const Waits&) = delete;
  Waits& operator=(const Waits&) = delete;

  /// Runs a plug-in, which waits in these loops; nothing where one runs already. Gives what Left gives behind it.
  bool RunPlugin(const std::function<void()>& plugin);
  bool plugin_runs() const { return plugin_runs_; }

  /// What the person did in the main window. Nothing happens where that is not waited for.
  void Choose(int number);         ///< entry of the menu
  void Pick(std::int32_t record);  ///< record number of a point, 0 to stop picking
  /// Leaves all that is open as by "Abbruch", and then the menu, as soon as the event that runs now is done. A dialog
  /// that stays open all the same ends the leaving. False where nothing is open.
  bool Leave();
  /// Whether all has been left by Leave, which is told once: the window closes then.
  bool Left();
  void StopLeaving() { leaving_ = false; }

  /// For the front end: until Choose or Pick; 0 where the person left.
  int WaitForChoice(Shell& shell, const Menu& menu);
  std::int32_t WaitForPick(Shell& shell);

  /// Handlers of machine faults for what the host does while the plug-in runs.
  const FaultHandlers& hosts_handlers() const { return hosts_; }

  /// One loop. `cancel` is what Leave does to it.
  class Wait {
   public:
    Wait(Waits& waits, std::function<void()> cancel);
    ~Wait();
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    /// Runs events until Stop, which may have come before, and then raises what AtEdge kept. Where the whole program
    /// ends first, the wait is cancelled.
    void Run();
    void Stop();

   private:
    friend class Waits;
    Waits& waits_;
    std::function<void()> cancel_;
    QEventLoop loop_;
    bool stopped_ = false;
    std::exception_ptr kept_;
    UnderHandlers hosts_handlers_;
  };

  /// The edge of a callback that runs in the innermost loop: what `work` throws ends that loop and is raised behind it.
  /// Without a loop it is told on stderr.
  void AtEdge(const std::function<void()>& work) noexcept;
  /// The same for calls into the plug-in: its own handlers of machine faults stand during the call.
  void InPlugin(const std::function<void()>& work) noexcept;

 private:
  QTimer soon_;  ///< the next step of leaving
  FaultHandlers hosts_;
  std::vector<Wait*> open_;
  Wait* menu_ = nullptr;
  Wait* pick_ = nullptr;
  int choice_ = 0;
  std::int32_t picked_ = 0;
  bool plugin_runs_ = false;
  bool leaving_ = false;
};

}  // namespace korvo
