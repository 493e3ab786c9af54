#include "korvo/desktop/main_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QScopeGuard>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "korvo/desktop/command_bar.h"
#include "korvo/desktop/find_bar.h"
#include "korvo/desktop/nas_window.h"
#include "korvo/desktop/notice_bar.h"
#include "korvo/desktop/picker.h"
#include "korvo/desktop/point_table_view.h"
#include "korvo/desktop/recent_menu.h"
#include "korvo/desktop/settings.h"
#include "korvo/desktop/status_line.h"
#include "korvo/desktop/text.h"
#include "korvo/host/menus.h"
#include "korvo/host/plugin.h"
#include "korvo/host/points.h"
#include "korvo/host/project.h"

namespace korvo {

namespace {

constexpr int kMessageTime = 8000;
constexpr const char* kCommands = "PKTAUMEN";

}  // namespace

MainWindow::MainWindow(Waits& waits, std::string library)
    : waits_(waits),
      library_(std::move(library)),
      edge_([this] { failure_notice_->Show(FailureText()); }),
      guard_(*this) {
  BuildCentre();
  status_ = new StatusLine;
  setStatusBar(status_);
  BuildActions();
  ShowProject({}, /*same=*/false);
  resize(OnScreen(*this, {1280, 800}));
  QSettings remembered = Remembered();
  restoreGeometry(remembered.value(QStringLiteral("window/geometry")).toByteArray());
  if (const QSize fitting = OnScreen(*this, size()); fitting != size() && !isMaximized()) {
    resize(fitting);
    move(screen()->availableGeometry().topLeft());
  }
  splitter_->restoreState(remembered.value(QStringLiteral("window/splitter")).toByteArray());
}

MainWindow::~MainWindow() {
  // What shows the points goes before them.
  delete nas_;
  delete takeCentralWidget();
}

// What is in the window

void MainWindow::BuildCentre() {
  project_notice_ = new NoticeBar(NoticeBar::Kind::kWarning);
  project_notice_->setObjectName(QStringLiteral("project_notice"));
  failure_notice_ = new NoticeBar(NoticeBar::Kind::kWarning);
  file_notice_ = new NoticeBar(NoticeBar::Kind::kOffer);
  file_notice_->setObjectName(QStringLiteral("file_notice"));
  find_ = new FindBar;
  map_ = new MapView(points_, edge_);
  map_->setObjectName(QStringLiteral("map"));
  table_ = new PointTableView(points_, edge_);
  auto* map_side = new QWidget;
  auto* below = new QVBoxLayout(map_side);
  below->setContentsMargins(0, 0, 0, 0);
  below->addWidget(find_);
  below->addWidget(map_, 1);
  splitter_ = new QSplitter;
  splitter_->setChildrenCollapsible(false);
  splitter_->addWidget(map_side);
  splitter_->addWidget(table_);
  splitter_->setSizes({740, 540});

  auto* centre = new QWidget;
  auto* layout = new QVBoxLayout(centre);
  layout->setContentsMargins(6, 4, 6, 0);
  layout->addWidget(project_notice_);
  layout->addWidget(failure_notice_);
  layout->addWidget(file_notice_);
  layout->addWidget(splitter_, 1);
  setCentralWidget(centre);

  edge_.Connect(find_, &FindBar::Entered, this, [this](const QString& number) { Find(number); });
  edge_.Connect(find_, &FindBar::PickEnded, this, [this] { StopPicking(); });
  edge_.Connect(map_, &MapView::Clicked, this, [this](int point, bool add) {
    if (picking_) return PickPoint(point);
    std::vector<int> selected = add ? map_->selected() : std::vector<int>();
    const auto there = std::find(selected.begin(), selected.end(), point);
    if (there != selected.end()) {
      selected.erase(there);
    } else if (point >= 0) {
      selected.insert(selected.begin(), point);
    }
    Select(selected);
  });
  edge_.Connect(map_, &MapView::CursorAt, this, [this](double east, double north) { status_->ShowPlace(east, north); });
  edge_.Connect(map_, &MapView::CursorLeft, this, [this] { status_->ClearPlace(); });
  edge_.Connect(table_, &PointTableView::Selected, this, [this](const std::vector<int>& points) {
    if (!points.empty()) map_->BringIntoView(points.front());
    map_->SetSelected(points);
  });
  edge_.Connect(table_, &PointTableView::Chosen, this, [this](int point) {
    if (picking_) return PickPoint(point);
    GoTo(point);
  });
}

void MainWindow::BuildActions() {
  const auto action = [this](QMenu* menu, const QString& text, const QKeySequence& keys, auto work) {
    QAction* made = menu->addAction(text);
    made->setShortcut(keys);
    edge_.Connect(made, &QAction::triggered, this, work);
    return made;
  };
  QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
  QAction* open = action(file, QStringLiteral("Projekt ö&ffnen …"), QKeySequence::Open, [this] { AskForProject(); });
  recent_ = new RecentMenu(QStringLiteral("&Zuletzt geöffnet"), file);
  file->addMenu(recent_);
  reload_ = action(file, QStringLiteral("&Neu laden"), QKeySequence(Qt::Key_F5), [this] { Reload(); });
  file->addSeparator();
  action(file, QStringLiteral("NAS-Datei &ansehen …"), QKeySequence(QStringLiteral("Ctrl+N")), [this] { AskForNas(); });
  save_map_ =
      action(file, QStringLiteral("&Karte speichern …"), QKeySequence(QStringLiteral("Ctrl+K")), [this] { SaveMap(); });
  save_map_->setObjectName(QStringLiteral("save_map"));
  file->addSeparator();
  action(file, QStringLiteral("&Beenden"), QKeySequence(QStringLiteral("Ctrl+Q")), [this] { close(); });
  edge_.Connect(recent_, &RecentMenu::Chosen, this, [this](const QString& path) { Open(path); });

  commands_ = new CommandBar(menuBar()->addMenu(QString()));
  commands_->Offer(*FindMenu(kCommands));
  edge_.Connect(commands_, &CommandBar::Chosen, this, [this](int number) { Command(number); });

  QMenu* view = menuBar()->addMenu(QStringLiteral("&Ansicht"));
  QAction* all = action(view, QStringLiteral("&Alles zeigen"), QKeySequence(QStringLiteral("Ctrl+0")),
                        [this] { map_->ShowAll(); });
  const auto middle = [this] { return QRectF(map_->rect()).center(); };
  action(view, QStringLiteral("&Vergrößern"), QKeySequence::ZoomIn, [this, middle] { map_->Zoom(1.5, middle()); });
  action(view, QStringLiteral("Verkl&einern"), QKeySequence::ZoomOut,
         [this, middle] { map_->Zoom(1 / 1.5, middle()); });
  action(view, QStringLiteral("Aus&wahl zeigen"), QKeySequence(QStringLiteral("Ctrl+E")),
         [this] { map_->ShowPoints(map_->selected()); });
  view->addSeparator();
  action(view, QStringLiteral("Punkt &suchen"), QKeySequence::Find, [this] { find_->Begin(); });
  action(view, QStringLiteral("Tabelle &filtern"), QKeySequence(QStringLiteral("Ctrl+L")),
         [this] { table_->FocusFilter(); });
  action(view, QStringLiteral("Nach Spalte &ordnen"), QKeySequence(QStringLiteral("Ctrl+R")),
         [this] { table_->SortByCurrentColumn(); });
  view->addSeparator();
  action(view, QStringLiteral("Zur &Karte"), QKeySequence(QStringLiteral("Ctrl+1")), [this] { map_->setFocus(); });
  action(view, QStringLiteral("Zur &Tabelle"), QKeySequence(QStringLiteral("Ctrl+2")),
         [this] { table_->FocusTable(); });

  QToolBar* bar = addToolBar(QStringLiteral("Projekt"));
  bar->setObjectName(QStringLiteral("project_bar"));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  open->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
  open->setIconText(QStringLiteral("Öffnen"));
  reload_->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
  all->setIconText(QStringLiteral("Alles zeigen"));
  for (QAction* shown : {open, reload_, all}) bar->addAction(shown);
  addToolBar(commands_);
  // The menus have no way to bring back a bar that has been put away.
  for (QToolBar* fixed : {bar, static_cast<QToolBar*>(commands_)}) fixed->setMovable(false);
  setContextMenuPolicy(Qt::NoContextMenu);
}

// The project

void MainWindow::WithoutPlugin(std::function<void()> work) {
  if (!waits_.plugin_runs()) return work();
  const QString ended =
      picking_ ? QStringLiteral("Die Punktabfrage wurde beendet.") : QStringLiteral("Das Modul wurde beendet.");
  after_plugin_ = [this, ended, work = std::move(work)] {
    ShowMessage(ended);
    work();
  };
  if (picking_) {
    StopPicking();
  } else if (menu_waits_) {
    Command(0);
  }
}

void MainWindow::Open(const QString& path) {
  WithoutPlugin([this, path] {
    const QString named = QFileInfo(path).isAbsolute() ? path : QFileInfo(path).absoluteFilePath();
    OpenedProject opened = OpenProject(QFile::encodeName(named).toStdString());
    if (opened.open) {
      const bool same = std::exchange(opened_, named) == named;
      recent_->Remember(named);
      return ShowProject(FromAnsi(opened.note), same);
    }
    // What was open may be gone for a moment only: it is asked for again at the next reload.
    if (!opened_.isEmpty()) OpenProject(QFile::encodeName(opened_).toStdString());
    ShowProject(AsLines(opened.refusal), /*same=*/true);
  });
}

void MainWindow::Reload() {
  if (opened_.isEmpty()) return;
  WithoutPlugin([this] {
    if (ProjectFolder().empty() || !WhyOnlyLooking().empty()) return Open(opened_);
    failure_notice_->Show({});
    std::string note;
    RefreshPointTable(&note);
    project_notice_->Show(AsLines(note));
    ReadPoints();
  });
}

void MainWindow::ShowProject(QString note, bool same) {
  const bool open = !ProjectFolder().empty();
  setWindowTitle(open ? QStringLiteral("Korvo – ") + FromAnsi(ProjectName()) : QStringLiteral("Korvo"));
  why_not_ = AsLines(WhyOnlyLooking());
  if (!why_not_.isEmpty()) {
    note += QStringLiteral("\nSie können das Projekt nur ansehen; F5 versucht es noch einmal.");
  }
  project_notice_->Show(note);
  failure_notice_->Show({});
  if (!same) {
    file_notice_->Show({});
    map_->SetSelected({});
  }
  ReadPoints();
  if (!same) map_->ShowAll();
}

void MainWindow::ReadPoints() {
  std::vector<std::pair<std::int32_t, std::string>> selected;
  for (const int point : map_->selected()) selected.emplace_back(points_.Record(point), points_.Number(point));
  table_->BeginRead();
  try {
    points_.Read();
  } catch (...) {
    table_->EndRead();
    map_->PointsRead();
    throw;
  }
  table_->EndRead();
  map_->PointsRead();
  if (nas_ != nullptr) {
    nas_->PointsRead();
    map_->SetMarked(nas_->Points());
  }
  std::vector<int> again;
  for (const auto& [record, number] : selected) {
    const int point = points_.PointOf(record);
    if (point >= 0 && points_.Number(point) == number) again.push_back(point);
  }
  Select(again);
  status_->ShowCounts(points_);
  UpdateActions();
}

QString MainWindow::Ask(Picker* picker) {
  QString picked = picker->Ask(waits_, guard_);
  if (waits_.Left()) close();
  return picked;
}

QString MainWindow::AskForFile(const QString& title, const QStringList& filters) {
  Picker picker(this, title);
  picker.setFileMode(QFileDialog::ExistingFile);
  picker.setNameFilters(filters);
  return Ask(&picker);
}

void MainWindow::AskForProject() {
  const QString path =
      AskForFile(QStringLiteral("Punkttabelle eines Projekts öffnen"), {QStringLiteral("Punkttabelle (*.dbf *.DBF)")});
  if (path.isEmpty()) return;
  WithoutPlugin([this, path] {
    Open(path);
    if (opened_ == path) Picker::Remember(path);
  });
}

void MainWindow::AskForNas() {
  const QString path = AskForFile(QStringLiteral("NAS-Datei ansehen"),
                                  {QStringLiteral("NAS-Datei (*.xml *.XML)"), QStringLiteral("Alle Dateien (*)")});
  if (!path.isEmpty() && OpenNas(path) != nullptr) Picker::Remember(path);
}

NasWindow* MainWindow::OpenNas(const QString& path) {
  auto file = std::make_unique<NasFile>();
  QString why;
  failure_notice_->Show({});
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const auto done = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
  if (!file->Read(path, &why)) {
    failure_notice_->Show(QStringLiteral("Die Datei %1 kann nicht gelesen werden: %2").arg(path, why));
    return nullptr;
  }
  if (nas_ != nullptr) nas_->close();
  nas_ = new NasWindow(std::move(file), points_, edge_, this);
  NasWindow* shown = nas_;
  edge_.Connect(shown, &NasWindow::PointChosen, this, [this](int point) { GoTo(point); });
  edge_.Connect(shown, &QDialog::finished, this, [this, shown] {
    if (nas_ == shown) map_->SetMarked({});
  });
  const std::vector<int> points = shown->Points();
  map_->SetMarked(points);
  map_->ShowPoints(points);
  shown->show();
  return shown;
}

void MainWindow::SaveMap() {
  Picker picker(this, QStringLiteral("Karte speichern"));
  picker.setAcceptMode(QFileDialog::AcceptSave);
  picker.setNameFilters({QStringLiteral("PNG-Bild (*.png)"), QStringLiteral("PDF-Dokument (*.pdf)")});
  picker.setDefaultSuffix(QStringLiteral("png"));
  edge_.Connect(&picker, &QFileDialog::filterSelected, &picker, [&picker](const QString& filter) {
    picker.setDefaultSuffix(filter.startsWith(QLatin1String("PDF")) ? QStringLiteral("pdf") : QStringLiteral("png"));
  });
  picker.endings = {QStringLiteral(".png"), QStringLiteral(".pdf")};
  const QString path = Ask(&picker);
  if (path.isEmpty()) return;
  failure_notice_->Show({});
  const QString title = FromAnsi(ProjectName());
  const bool pdf = path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
  QString why;
  if (pdf ? map_->SavePdf(path, title, &why) : map_->SavePng(path, title, &why)) {
    Picker::Remember(path);
    ShowMessage(QStringLiteral("Karte gespeichert: ") + path);
  } else {
    failure_notice_->Show(QStringLiteral("Die Karte konnte nicht unter %1 gespeichert werden: %2").arg(path, why));
  }
}

// The plug-in

void MainWindow::UpdateActions() {
  const bool runs = waits_.plugin_runs();
  const bool free = runs ? menu_waits_ || picking_ : !ProjectFolder().empty() && why_not_.isEmpty();
  commands_->Enable(free, free && runs);
  reload_->setEnabled(!opened_.isEmpty());
  save_map_->setEnabled(points_.count() > 0);
}

void MainWindow::Command(int number) {
  if (menu_waits_) {
    // The loop ends when this event is done; until then no second command is taken.
    HideMenu();
    return waits_.Choose(number);
  }
  pending_ = number;
  if (picking_) {
    StopPicking();
  } else if (!waits_.plugin_runs()) {
    StartPlugin();
  }
}

void MainWindow::StartPlugin() {
  failure_notice_->Show({});
  std::string why;
  bool called = false;
  const bool left = waits_.RunPlugin([&] { called = korvo::RunPlugin(library_, &why); });
  pending_.reset();
  if (!called) failure_notice_->Show(AsLines(why));
  std::string note;
  if (!RefreshPointTable(&note) && called) project_notice_->Show(AsLines(note));
  ReadPoints();
  if (left) {
    close();
  } else if (after_plugin_) {
    std::exchange(after_plugin_, nullptr)();
  }
}

void MainWindow::ShowMenu(const Menu& menu) {
  menu_waits_ = true;
  commands_->Offer(menu);
  UpdateActions();
  if (after_plugin_) {
    waits_.Choose(0);
  } else if (pending_) {
    waits_.Choose(*std::exchange(pending_, std::nullopt));
  } else {
    status_->showMessage(QStringLiteral("Das Modul wartet auf einen Befehl."));
  }
}

void MainWindow::HideMenu() {
  menu_waits_ = false;
  status_->clearMessage();
  UpdateActions();
}

void MainWindow::BeginPick() {
  SetPicking(true);
  find_->Begin();
}

void MainWindow::EndPick() { SetPicking(false); }

void MainWindow::SetPicking(bool picking) {
  picking_ = picking;
  find_->SetPicking(picking);
  map_->SetPicking(picking);
  UpdateActions();
}

void MainWindow::PickPoint(int point) {
  if (point < 0) return ShowMessage(QStringLiteral("Dort ist kein Punkt."));
  status_->clearMessage();
  Select({point});
  EndPick();
  waits_.Pick(points_.Record(point));
}

void MainWindow::StopPicking() {
  EndPick();
  waits_.Pick(0);
}

void MainWindow::PointChanged(std::int32_t number) {
  // The point is written, whatever comes of showing it.
  edge_.Run([&] {
    const int point = number > 0 ? points_.PointOf(number) : -1;
    if (point < 0 || points_.Reread(number) < 0) return ReadPoints();
    table_->PointChanged(point);
    map_->PointChanged();
    status_->ShowCounts(points_);
  });
}

void MainWindow::ShowMessage(const QString& text) { status_->showMessage(text, kMessageTime); }

void MainWindow::FileSaved(const QString& path) {
  file_notice_->Show(QStringLiteral("%1 wurde geschrieben.").arg(path), QStringLiteral("Datei anse&hen"),
                     [this, path] { edge_.Run([&] { OpenNas(path); }); });
}

bool MainWindow::event(QEvent* event) {
  // The menus have no tips for the status line, and without one they would wipe it.
  return event->type() == QEvent::StatusTip || QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (waits_.Leave()) return event->ignore();
  QSettings remembered = Remembered();
  remembered.setValue(QStringLiteral("window/geometry"), saveGeometry());
  remembered.setValue(QStringLiteral("window/splitter"), splitter_->saveState());
  event->accept();
  Q_EMIT Closed();
}

// Points

void MainWindow::Find(const QString& number) {
  const std::string ansi = FromLine(number);
  int point = points_.Find(ansi);
  if (point < 0 && !picking_) point = points_.FindPart(ansi, map_->selected().empty() ? -1 : map_->selected().front());
  if (point < 0) {
    find_->Begin();
    return ShowMessage(QStringLiteral("Die Tabelle hat keinen Punkt %1.").arg(number));
  }
  if (picking_) return PickPoint(point);
  GoTo(point);
}

void MainWindow::GoTo(int point) {
  Select({point});
  map_->CentreOn(point);
  if (!points_.HasPlace(point)) ShowMessage(QStringLiteral("Der Punkt hat keine Koordinaten."));
}

void MainWindow::Select(const std::vector<int>& points) {
  map_->SetSelected(points);
  table_->Select(points);
}

}  // namespace korvo
