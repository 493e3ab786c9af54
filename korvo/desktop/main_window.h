// The window in which a surveyor works: map, table, the plug-in's commands.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "korvo/desktop/map_view.h"
#include "korvo/desktop/point_model.h"
#include "korvo/desktop/point_set.h"
#include "korvo/desktop/shell.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSplitter;
class QTableView;
class QTimer;
class QToolBar;

namespace korvo {

class NasWindow;
class NoticeBar;

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

  QWidget* Widget() override { return this; }
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
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildActions();
  void BuildCentre();
  QWidget* BuildMapSide();
  QWidget* BuildTableSide();
  void BuildStatusBar();

  void SetCommands(const Menu& menu);
  void Command(int number);
  void UpdateCommands();
  /// Does it now, or, where the plug-in waits in its menu, after the end of the plug-in.
  void WithoutPlugin(std::function<void()> work);

  void ReadPoints();
  void ShowCounts();
  void ShowProject(QString note);
  void Remember(const QString& path);
  void FillRecent();

  void AskForProject();
  void AskForNas();
  void SaveMap();

  /// The line above the map: for finding points, or for picking one.
  void ShowFindBar();
  void Entered();
  void PickPoint(int point);
  void StopPicking();
  void Select(const std::vector<int>& points);
  void FollowTable();
  void ApplyFilter();
  void FitColumns();

  Waits& waits_;
  std::string library_;
  PointSet points_;
  QString opened_;   ///< what the person named
  QString why_not_;  ///< why the plug-in cannot be started; empty where it can

  MapView* map_;
  PointModel* model_;
  QTableView* table_;
  QSplitter* splitter_;
  NoticeBar* project_notice_;
  NoticeBar* file_notice_;
  QWidget* find_bar_;
  QLabel* find_label_;
  QLineEdit* find_;
  QPushButton* find_button_;
  QPushButton* end_pick_;
  QAction* stop_pick_ = nullptr;
  QLineEdit* filter_text_;
  QComboBox* filter_column_;
  QComboBox* filter_state_;
  QTimer* filter_timer_;
  QLabel* filter_count_;
  QMenu* recent_;
  QMenu* commands_menu_;
  QToolBar* commands_bar_;
  std::vector<QAction*> commands_;
  QAction* reload_ = nullptr;
  QAction* save_map_ = nullptr;
  std::array<QLabel*, kPointStates> counts_{};
  QLabel* without_place_;
  QLabel* coordinates_;
  QPointer<NasWindow> nas_;

  const Menu* menu_ = nullptr;  ///< whose entries are offered
  bool menu_waits_ = false;
  bool picking_ = false;
  bool following_ = false;      ///< a selection is being passed on between map and table
  std::optional<int> pending_;  ///< entry of the menu that the plug-in was started for, or led back to the menu for
  std::function<void()> after_plugin_;
};

}  // namespace korvo
