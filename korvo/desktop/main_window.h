// The window in which a surveyor works: map, table, the plug-in's commands.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "korvo/desktop/edge.h"
#include "korvo/desktop/map_view.h"
#include "korvo/desktop/modal_guard.h"
#include "korvo/desktop/point_set.h"
#include "korvo/desktop/shell.h"

class QSplitter;

namespace korvo {

class CommandBar;
class FindBar;
class NasWindow;
class NoticeBar;
class Picker;
class PointTableView;
class RecentMenu;
class StatusLine;

class MainWindow : public QMainWindow, public Shell {
  Q_OBJECT

 public:
  /// `waits` must outlive the window; `library` is the plug-in, path on disk.
  MainWindow(Waits& waits, std::string library);
  ~MainWindow() override;

  /// A folder or a table. Where that is none, the window says why and what was open before is open again.
  void Open(const QString& path);
  /// Reads the points again.
  void Reload();
  /// Shows what is in a NAS file. Null where it cannot be read, and the window says so.
  NasWindow* OpenNas(const QString& path);

  /// Starts the plug-in, which waits in its menu; gives back when it has ended. What keeps it from starting is said.
  void StartPlugin();

  MapView& map() { return *map_; }
  const PointSet& points() const { return points_; }
  /// In which all runs that the toolkit calls; what is thrown there stands in the notice.
  const Edge& edge() const { return edge_; }

  QWidget* Widget() override { return this; }
  ModalGuard& Guard() override { return guard_; }
  void ShowMenu(const Menu& menu) override;
  void HideMenu() override;
  void BeginPick() override;
  void EndPick() override;
  void PointChanged(std::int32_t number) override;
  void ShowMessage(const QString& text) override;
  void FileSaved(const QString& path) override;

 Q_SIGNALS:
  void Closed();

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildCentre();
  void BuildActions();

  void Command(int number);
  void UpdateActions();
  /// Does it now, or, where the plug-in waits in its menu, after the end of the plug-in.
  void WithoutPlugin(std::function<void()> work);

  void ReadPoints();
  /// `same`: it has been shown before, and what the person sees of it stays.
  void ShowProject(QString note, bool same);

  /// What the person picks; empty for nothing.
  QString Ask(Picker* picker);
  QString AskForFile(const QString& title, const QStringList& filters);
  void AskForProject();
  void AskForNas();
  void SaveMap();

  void Find(const QString& number);
  void GoTo(int point);
  void SetPicking(bool picking);
  void PickPoint(int point);
  void StopPicking();
  void Select(const std::vector<int>& points);

  Waits& waits_;
  std::string library_;
  Edge edge_;
  ModalGuard guard_;
  PointSet points_;
  QString opened_;   ///< what the person named
  QString why_not_;  ///< why the plug-in cannot be started; empty where it can

  NoticeBar* project_notice_;  ///< while the project is open
  NoticeBar* failure_notice_;
  NoticeBar* file_notice_;
  FindBar* find_;
  MapView* map_;
  PointTableView* table_;
  QSplitter* splitter_;
  StatusLine* status_;
  RecentMenu* recent_;
  CommandBar* commands_;
  QAction* reload_;
  QAction* save_map_;
  QPointer<NasWindow> nas_;

  bool menu_waits_ = false;
  bool picking_ = false;
  std::optional<int> pending_;  ///< entry of the menu that the plug-in was started for, or led back to the menu for
  std::function<void()> after_plugin_;
};

}  // namespace korvo
