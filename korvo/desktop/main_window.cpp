#include "korvo/desktop/main_window.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "korvo/desktop/nas_window.h"
#include "korvo/desktop/notice_bar.h"
#include "korvo/desktop/settings.h"
#include "korvo/desktop/text.h"
#include "korvo/host/menus.h"
#include "korvo/host/plugin.h"
#include "korvo/host/points.h"
#include "korvo/host/project.h"

namespace korvo {

namespace {

constexpr int kMessageTime = 8000;
constexpr int kFilterPause = 150;
constexpr int kMostRecent = 8;
constexpr int kWidestColumn = 28;  // characters
constexpr const char* kCommands = "PKTAUMEN";

QString Metres(double value) { return QLocale().toString(value, 'f', 3); }

QLabel* PlainLabel(const QString& text = {}) {
  auto* label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

MainWindow::MainWindow(Waits& waits, std::string library) : waits_(waits), library_(std::move(library)) {
  setWindowTitle(QStringLiteral("Korvo"));
  BuildCentre();
  BuildStatusBar();
  BuildActions();
  SetCommands(*FindMenu(kCommands));
  ShowCounts();
  resize(1280, 800);
  QSettings remembered = Remembered();
  restoreGeometry(remembered.value(QStringLiteral("window/geometry")).toByteArray());
  splitter_->restoreState(remembered.value(QStringLiteral("window/splitter")).toByteArray());
}

MainWindow::~MainWindow() {
  // What shows the points goes before them.
  delete nas_;
  delete takeCentralWidget();
}

// What is in the window

void MainWindow::BuildCentre() {
  map_ = new MapView(points_);
  map_->setObjectName(QStringLiteral("map"));
  model_ = new PointModel(points_, this);
  project_notice_ = new NoticeBar(NoticeBar::Kind::kWarning);
  project_notice_->setObjectName(QStringLiteral("project_notice"));
  file_notice_ = new NoticeBar(NoticeBar::Kind::kOffer);
  file_notice_->setObjectName(QStringLiteral("file_notice"));
  splitter_ = new QSplitter;
  splitter_->setChildrenCollapsible(false);
  splitter_->addWidget(BuildMapSide());
  splitter_->addWidget(BuildTableSide());
  splitter_->setSizes({740, 540});

  auto* centre = new QWidget;
  auto* layout = new QVBoxLayout(centre);
  layout->setContentsMargins(6, 4, 6, 0);
  layout->addWidget(project_notice_);
  layout->addWidget(file_notice_);
  layout->addWidget(splitter_, 1);
  setCentralWidget(centre);

  connect(map_, &MapView::Clicked, this, [this](int point, bool add) {
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
  connect(map_, &MapView::CursorAt, this, [this](double east, double north) {
    coordinates_->setText(QStringLiteral("E %1   N %2").arg(Metres(east), Metres(north)));
  });
  connect(map_, &MapView::CursorLeft, this, [this] { coordinates_->clear(); });
}

QWidget* MainWindow::BuildMapSide() {
  find_label_ = PlainLabel();
  find_ = new QLineEdit;
  find_->setObjectName(QStringLiteral("find"));
  find_->setClearButtonEnabled(true);
  find_->setMaximumWidth(220);
  find_->setAccessibleName(QStringLiteral("Punktnummer"));
  find_label_->setBuddy(find_);
  find_button_ = new QPushButton;
  find_button_->setObjectName(QStringLiteral("find_button"));
  end_pick_ = new QPushButton(QStringLiteral("Beenden (Esc)"));
  end_pick_->setObjectName(QStringLiteral("end_pick"));
  find_bar_ = new QWidget;
  find_bar_->setAutoFillBackground(true);
  auto* line = new QHBoxLayout(find_bar_);
  line->setContentsMargins(6, 3, 6, 3);
  line->addWidget(find_label_);
  line->addWidget(find_);
  line->addWidget(find_button_);
  line->addWidget(end_pick_);
  line->addStretch(1);
  auto* side = new QWidget;
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(find_bar_);
  layout->addWidget(map_, 1);
  ShowFindBar();
  connect(find_, &QLineEdit::returnPressed, this, &MainWindow::Entered);
  connect(find_button_, &QPushButton::clicked, this, &MainWindow::Entered);
  connect(end_pick_, &QPushButton::clicked, this, &MainWindow::StopPicking);
  return side;
}

QWidget* MainWindow::BuildTableSide() {
  filter_text_ = new QLineEdit;
  filter_text_->setObjectName(QStringLiteral("filter"));
  filter_text_->setPlaceholderText(QStringLiteral("Filter"));
  filter_text_->setClearButtonEnabled(true);
  filter_text_->setAccessibleName(QStringLiteral("Text, den die Zeilen enthalten"));
  filter_column_ = new QComboBox;
  filter_column_->setAccessibleName(QStringLiteral("Spalte des Filters"));
  filter_column_->addItem(QStringLiteral("in allen Spalten"));
  filter_state_ = new QComboBox;
  filter_state_->setObjectName(QStringLiteral("filter_state"));
  filter_state_->setAccessibleName(QStringLiteral("Zustand der Punkte"));
  filter_state_->addItem(QStringLiteral("alle Zustände"));
  for (int i = 0; i < kPointStates; ++i) {
    const auto state = static_cast<PointState>(i);
    filter_state_->addItem(IconOf(state), NameOf(state));
  }
  filter_count_ = PlainLabel();
  filter_timer_ = new QTimer(this);
  filter_timer_->setSingleShot(true);
  filter_timer_->setInterval(kFilterPause);
  auto* line = new QHBoxLayout;
  line->setContentsMargins(6, 3, 0, 3);
  line->addWidget(filter_text_, 1);
  line->addWidget(filter_column_);
  line->addWidget(filter_state_);
  line->addWidget(filter_count_);

  table_ = new QTableView;
  table_->setObjectName(QStringLiteral("table"));
  table_->setAccessibleName(QStringLiteral("Tabelle der Punkte"));
  table_->setModel(model_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setWordWrap(false);
  table_->setTabKeyNavigation(false);
  table_->setAlternatingRowColors(true);
  table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  table_->setSortingEnabled(true);
  table_->horizontalHeader()->setSortIndicatorClearable(true);
  table_->horizontalHeader()->setSectionsMovable(true);
  table_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  auto* side = new QWidget;
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(line);
  layout->addWidget(table_, 1);

  connect(filter_text_, &QLineEdit::textEdited, filter_timer_, qOverload<>(&QTimer::start));
  connect(filter_text_, &QLineEdit::textChanged, filter_timer_, qOverload<>(&QTimer::start));
  connect(filter_timer_, &QTimer::timeout, this, &MainWindow::ApplyFilter);
  connect(filter_text_, &QLineEdit::returnPressed, this, &MainWindow::ApplyFilter);
  connect(filter_column_, &QComboBox::activated, this, &MainWindow::ApplyFilter);
  connect(filter_state_, &QComboBox::activated, this, &MainWindow::ApplyFilter);
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MainWindow::FollowTable);
  connect(table_, &QAbstractItemView::activated, this, [this](const QModelIndex& index) {
    const int point = model_->PointAt(index.row());
    if (picking_) return PickPoint(point);
    map_->CentreOn(point);
  });
  return side;
}

void MainWindow::BuildStatusBar() {
  for (int i = 0; i < kPointStates; ++i) {
    auto* icon = new QLabel;
    icon->setPixmap(IconOf(static_cast<PointState>(i)).pixmap(QSize(16, 16), devicePixelRatioF()));
    statusBar()->addPermanentWidget(icon);
    counts_[static_cast<std::size_t>(i)] = PlainLabel();
    statusBar()->addPermanentWidget(counts_[static_cast<std::size_t>(i)]);
  }
  without_place_ = PlainLabel();
  statusBar()->addPermanentWidget(without_place_);
  coordinates_ = PlainLabel();
  coordinates_->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("E 00.000.000,000   N 0.000.000,000 ")));
  coordinates_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  statusBar()->addPermanentWidget(coordinates_);
}

void MainWindow::BuildActions() {
  const auto action = [this](QMenu* menu, const QString& text, const QKeySequence& keys, auto work) {
    QAction* made = menu->addAction(text, this, work);
    made->setShortcut(keys);
    return made;
  };
  QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
  QAction* open = action(file, QStringLiteral("Projekt ö&ffnen …"), QKeySequence::Open, [this] { AskForProject(); });
  recent_ = file->addMenu(QStringLiteral("&Zuletzt geöffnet"));
  reload_ = action(file, QStringLiteral("&Neu laden"), QKeySequence(Qt::Key_F5), [this] { Reload(); });
  file->addSeparator();
  action(file, QStringLiteral("NAS-Datei &ansehen …"), QKeySequence(QStringLiteral("Ctrl+N")), [this] { AskForNas(); });
  save_map_ =
      action(file, QStringLiteral("&Karte speichern …"), QKeySequence(QStringLiteral("Ctrl+K")), [this] { SaveMap(); });
  file->addSeparator();
  action(file, QStringLiteral("&Beenden"), QKeySequence(QStringLiteral("Ctrl+Q")), [this] { close(); });
  connect(file, &QMenu::aboutToShow, this, &MainWindow::FillRecent);
  FillRecent();

  commands_menu_ = menuBar()->addMenu(QString());

  QMenu* view = menuBar()->addMenu(QStringLiteral("&Ansicht"));
  QAction* all = action(view, QStringLiteral("&Alles zeigen"), QKeySequence(QStringLiteral("Ctrl+0")),
                        [this] { map_->ShowAll(); });
  const auto middle = [this] { return QRectF(map_->rect()).center(); };
  action(view, QStringLiteral("&Vergrößern"), QKeySequence::ZoomIn, [this, middle] { map_->Zoom(1.5, middle()); });
  action(view, QStringLiteral("Ver&kleinern"), QKeySequence::ZoomOut,
         [this, middle] { map_->Zoom(1 / 1.5, middle()); });
  action(view, QStringLiteral("Aus&wahl zeigen"), QKeySequence(QStringLiteral("Ctrl+E")),
         [this] { map_->ShowPoints(map_->selected()); });
  view->addSeparator();
  action(view, QStringLiteral("Punkt &suchen"), QKeySequence::Find, [this] {
    find_->setFocus();
    find_->selectAll();
  });
  action(view, QStringLiteral("Tabelle &filtern"), QKeySequence(QStringLiteral("Ctrl+L")), [this] {
    filter_text_->setFocus();
    filter_text_->selectAll();
  });
  action(view, QStringLiteral("Zur &Karte"), QKeySequence(QStringLiteral("Ctrl+1")), [this] { map_->setFocus(); });
  action(view, QStringLiteral("Zur &Tabelle"), QKeySequence(QStringLiteral("Ctrl+2")), [this] { table_->setFocus(); });

  stop_pick_ = new QAction(this);
  stop_pick_->setShortcut(Qt::Key_Escape);
  stop_pick_->setEnabled(false);
  connect(stop_pick_, &QAction::triggered, this, &MainWindow::StopPicking);
  addAction(stop_pick_);

  QToolBar* bar = addToolBar(QStringLiteral("Projekt"));
  bar->setObjectName(QStringLiteral("project_bar"));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  open->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
  open->setIconText(QStringLiteral("Öffnen"));
  reload_->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
  all->setIconText(QStringLiteral("Alles zeigen"));
  for (QAction* shown : {open, reload_, all}) bar->addAction(shown);
  commands_bar_ = addToolBar(QStringLiteral("Modul"));
  commands_bar_->setObjectName(QStringLiteral("commands_bar"));
}

// The project

void MainWindow::WithoutPlugin(std::function<void()> work) {
  if (!waits_.plugin_runs()) return work();
  after_plugin_ = std::move(work);
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
      opened_ = named;
      Remember(named);
      return ShowProject(FromAnsi(opened.note));
    }
    const QString refusal = AsLines(opened.refusal);
    if (!opened_.isEmpty()) opened = OpenProject(QFile::encodeName(opened_).toStdString());
    if (!opened.open) opened_.clear();
    ShowProject(refusal);
  });
}

void MainWindow::Reload() {
  if (opened_.isEmpty()) return;
  WithoutPlugin([this] {
    if (!WhyOnlyLooking().empty()) return Open(opened_);
    std::string why;
    if (!RefreshPointTable(&why)) project_notice_->Show(AsLines(why));
    ReadPoints();
  });
}

void MainWindow::ShowProject(QString note) {
  const bool open = !ProjectFolder().empty();
  setWindowTitle(open ? QStringLiteral("Korvo – ") + FromAnsi(ProjectName()) : QStringLiteral("Korvo"));
  why_not_ = AsLines(WhyOnlyLooking());
  if (!why_not_.isEmpty()) {
    note += QStringLiteral("\nSie können das Projekt nur ansehen; F5 versucht es noch einmal.");
  }
  project_notice_->Show(note);
  file_notice_->Show({});
  ReadPoints();
  map_->ShowAll();
  UpdateCommands();
}

void MainWindow::ReadPoints() {
  std::vector<std::int32_t> selected;
  for (const int point : map_->selected()) selected.push_back(points_.Record(point));
  const auto names = [this] {
    std::vector<std::string> all;
    for (const Column& column : points_.columns()) all.push_back(column.name);
    return all;
  };
  const std::vector<std::string> before = names();
  model_->BeginRead();
  points_.Read();
  model_->EndRead();
  map_->PointsRead();
  if (names() != before) FitColumns();
  if (nas_ != nullptr) {
    nas_->PointsRead();
    map_->SetMarked(nas_->Points());
  }
  std::vector<int> again;
  for (const std::int32_t record : selected) {
    if (const int point = points_.PointOf(record); point >= 0) again.push_back(point);
  }
  Select(again);
  ShowCounts();
}

void MainWindow::FitColumns() {
  constexpr int kRoom = 16;
  const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
  const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize) + kRoom / 2;
  filter_column_->clear();
  filter_column_->addItem(QStringLiteral("in allen Spalten"));
  for (int i = 0; i < model_->columnCount(); ++i) {
    const QString name = model_->headerData(i, Qt::Horizontal).toString();
    filter_column_->addItem(QStringLiteral("in ") + name);
    const int characters =
        i == points_.number_column() ? model_->CharactersOf(i) : std::min(kWidestColumn, model_->CharactersOf(i));
    const int head = table_->horizontalHeader()->fontMetrics().horizontalAdvance(name) + 2 * kRoom;
    table_->setColumnWidth(i, std::max(characters * digit + kRoom, head) + (i == 0 ? icon : 0));
  }
}

void MainWindow::ShowCounts() {
  for (int i = 0; i < kPointStates; ++i) {
    const auto state = static_cast<PointState>(i);
    counts_[static_cast<std::size_t>(i)]->setText(
        QStringLiteral("%1 %2").arg(QLocale().toString(points_.CountOf(state)), NameOf(state)));
  }
  without_place_->setVisible(points_.without_place() > 0);
  without_place_->setText(QStringLiteral("%1 ohne Koordinaten").arg(QLocale().toString(points_.without_place())));
  const int shown = model_->rowCount();
  filter_count_->setText(
      QStringLiteral("%1 von %2").arg(QLocale().toString(shown), QLocale().toString(points_.count())));
}

void MainWindow::Remember(const QString& path) {
  QSettings remembered = Remembered();
  QStringList recent = remembered.value(QStringLiteral("recent")).toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  remembered.setValue(QStringLiteral("recent"), QStringList(recent.mid(0, kMostRecent)));
}

void MainWindow::FillRecent() {
  recent_->clear();
  const QStringList recent = Remembered().value(QStringLiteral("recent")).toStringList();
  for (const QString& path : recent) {
    QAction* entry = recent_->addAction(QString(path).replace(QLatin1Char('&'), QStringLiteral("&&")));
    connect(entry, &QAction::triggered, this, [this, path] { Open(path); });
  }
  recent_->setEnabled(!recent.isEmpty());
}

void MainWindow::AskForProject() {
  const QString path =
      QFileDialog::getOpenFileName(this, QStringLiteral("Punkttabelle eines Projekts öffnen"),
                                   FromAnsi(ProjectFolder()), QStringLiteral("Punkttabelle (*.dbf *.DBF)"));
  if (!path.isEmpty()) Open(path);
}

void MainWindow::AskForNas() {
  const QString path =
      QFileDialog::getOpenFileName(this, QStringLiteral("NAS-Datei ansehen"), FromAnsi(ProjectFolder()),
                                   QStringLiteral("NAS-Datei (*.xml *.XML);;Alle Dateien (*)"));
  if (!path.isEmpty()) OpenNas(path);
}

NasWindow* MainWindow::OpenNas(const QString& path) {
  auto file = std::make_unique<NasFile>();
  QString why;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const bool read = file->Read(path, &why);
  QApplication::restoreOverrideCursor();
  if (!read) {
    project_notice_->Show(QStringLiteral("Die Datei %1 kann nicht gelesen werden: %2").arg(path, why));
    return nullptr;
  }
  if (nas_ != nullptr) nas_->close();
  nas_ = new NasWindow(std::move(file), points_, this);
  NasWindow* shown = nas_;
  connect(shown, &NasWindow::PointChosen, this, [this](int point) {
    Select({point});
    map_->CentreOn(point);
  });
  connect(shown, &QDialog::finished, this, [this, shown] {
    if (nas_ == shown) map_->SetMarked({});
  });
  const std::vector<int> points = shown->Points();
  map_->SetMarked(points);
  map_->ShowPoints(points);
  shown->show();
  return shown;
}

void MainWindow::SaveMap() {
  QFileDialog dialog(this, QStringLiteral("Karte speichern"), FromAnsi(ProjectFolder()),
                     QStringLiteral("PNG-Bild (*.png);;PDF-Dokument (*.pdf)"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("png"));
  connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString& filter) {
    dialog.setDefaultSuffix(filter.startsWith(QLatin1String("PDF")) ? QStringLiteral("pdf") : QStringLiteral("png"));
  });
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
  const QString path = dialog.selectedFiles().constFirst();
  const QString title = FromAnsi(ProjectName());
  const bool pdf = path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
  if (pdf ? map_->SavePdf(path, title) : map_->SavePng(path, title)) {
    ShowMessage(QStringLiteral("Karte gespeichert: ") + path);
  } else {
    project_notice_->Show(QStringLiteral("Die Karte konnte nicht gespeichert werden: ") + path);
  }
}

// The plug-in

void MainWindow::SetCommands(const Menu& menu) {
  if (&menu == menu_) return;
  menu_ = &menu;
  commands_menu_->clear();
  commands_bar_->clear();
  commands_.clear();
  commands_menu_->setTitle(QStringLiteral("&") + AsCaption(menu.title));
  commands_bar_->setWindowTitle(AsLine(menu.title));
  for (const Menu::Entry& entry : menu.entries) {
    QAction* command = commands_menu_->addAction(AsCaption(entry.text));
    command->setData(entry.number);
    command->setObjectName(QStringLiteral("command_%1").arg(entry.number));
    // The function key of the entry's number, where there is one.
    command->setShortcut(entry.number == 0    ? QKeySequence(QStringLiteral("Shift+Esc"))
                         : entry.number <= 12 ? QKeySequence(Qt::Key_F1 + entry.number - 1)
                                              : QKeySequence());
    command->setToolTip(
        QStringLiteral("%1 (%2)").arg(AsLine(entry.text), command->shortcut().toString(QKeySequence::NativeText)));
    connect(command, &QAction::triggered, this, [this, number = entry.number] { Command(number); });
    commands_bar_->addAction(command);
    commands_.push_back(command);
  }
  UpdateCommands();
}

void MainWindow::UpdateCommands() {
  const bool runs = waits_.plugin_runs();
  const bool free = runs ? menu_waits_ || picking_ : !ProjectFolder().empty() && why_not_.isEmpty();
  for (QAction* command : commands_) command->setEnabled(free && (runs || command->data().toInt() != 0));
  if (reload_ == nullptr) return;
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
  std::string why;
  bool called = false;
  const bool left = waits_.RunPlugin([&] { called = korvo::RunPlugin(library_, &why); });
  pending_.reset();
  if (!called) project_notice_->Show(AsLines(why));
  std::string ignored;
  if (RefreshPointTable(&ignored)) ReadPoints();
  UpdateCommands();
  if (left) {
    close();
  } else if (after_plugin_) {
    std::exchange(after_plugin_, nullptr)();
  }
}

void MainWindow::ShowMenu(const Menu& menu) {
  menu_waits_ = true;
  SetCommands(menu);
  UpdateCommands();
  if (after_plugin_) {
    waits_.Choose(0);
  } else if (pending_) {
    waits_.Choose(*std::exchange(pending_, std::nullopt));
  } else {
    statusBar()->showMessage(QStringLiteral("Das Modul wartet auf einen Befehl."));
  }
}

void MainWindow::HideMenu() {
  menu_waits_ = false;
  statusBar()->clearMessage();
  UpdateCommands();
}

void MainWindow::BeginPick() {
  picking_ = true;
  ShowFindBar();
  find_->setFocus();
  stop_pick_->setEnabled(true);
  UpdateCommands();
}

void MainWindow::EndPick() {
  picking_ = false;
  ShowFindBar();
  stop_pick_->setEnabled(false);
  UpdateCommands();
}

void MainWindow::ShowFindBar() {
  find_label_->setText(picking_ ? QStringLiteral("Punkt wählen – in Karte oder Tabelle, oder N&ummer:")
                                : QStringLiteral("Punkt &suchen:"));
  find_button_->setText(picking_ ? QStringLiteral("&Wählen") : QStringLiteral("&Zeigen"));
  end_pick_->setVisible(picking_);
  find_->clear();
  QPalette colours = palette();
  if (picking_) colours.setColor(QPalette::Window, QColor(0xff, 0xe2, 0xb3));
  find_bar_->setPalette(colours);
  map_->SetPicking(picking_);
}

void MainWindow::PickPoint(int point) {
  if (point < 0) return ShowMessage(QStringLiteral("Dort ist kein Punkt."));
  Select({point});
  EndPick();
  waits_.Pick(points_.Record(point));
}

void MainWindow::StopPicking() {
  EndPick();
  waits_.Pick(0);
}

void MainWindow::PointChanged(std::int32_t number) {
  const int point = number > 0 ? points_.PointOf(number) : -1;
  if (point < 0 || points_.Reread(number) < 0) return ReadPoints();
  model_->PointChanged(point);
  map_->PointChanged();
  ShowCounts();
}

void MainWindow::ShowMessage(const QString& text) { statusBar()->showMessage(text, kMessageTime); }

void MainWindow::FileSaved(const QString& path) {
  file_notice_->Show(QStringLiteral("%1 wurde geschrieben.").arg(path), QStringLiteral("Datei &ansehen"),
                     [this, path] { OpenNas(path); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (waits_.plugin_runs()) {
    waits_.Leave();
    return event->ignore();
  }
  QSettings remembered = Remembered();
  remembered.setValue(QStringLiteral("window/geometry"), saveGeometry());
  remembered.setValue(QStringLiteral("window/splitter"), splitter_->saveState());
  event->accept();
  Q_EMIT Closed();
}

// Points

void MainWindow::Entered() {
  const std::string number = ToAnsi(find_->text().trimmed());
  if (number.empty()) return;
  int point = points_.Find(number);
  if (point < 0 && !picking_)
    point = points_.FindPart(number, map_->selected().empty() ? -1 : map_->selected().front());
  if (point < 0) {
    find_->selectAll();
    return ShowMessage(QStringLiteral("Die Tabelle hat keinen Punkt %1.").arg(find_->text().trimmed()));
  }
  if (picking_) return PickPoint(point);
  Select({point});
  map_->CentreOn(point);
  if (!points_.HasPlace(point)) ShowMessage(QStringLiteral("Der Punkt hat keine Koordinaten."));
}

void MainWindow::Select(const std::vector<int>& points) {
  following_ = true;
  map_->SetSelected(points);
  std::vector<int> rows;
  for (const int point : points) {
    if (const int row = model_->RowOf(point); row >= 0) rows.push_back(row);
  }
  const int first = rows.empty() ? -1 : rows.front();
  // As ranges: the toolkit compares each with each.
  std::sort(rows.begin(), rows.end());
  QItemSelection ranges;
  for (std::size_t from = 0, to = 0; from < rows.size(); from = to) {
    for (++to; to < rows.size() && rows[to] == rows[to - 1] + 1;) ++to;
    ranges.select(model_->index(rows[from], 0), model_->index(rows[to - 1], model_->columnCount() - 1));
  }
  QItemSelectionModel& selection = *table_->selectionModel();
  if (first >= 0) {
    const QModelIndex shown = model_->index(first, std::max(0, table_->currentIndex().column()));
    selection.setCurrentIndex(shown, QItemSelectionModel::NoUpdate);
    table_->scrollTo(shown);
  }
  selection.select(ranges, QItemSelectionModel::ClearAndSelect);
  following_ = false;
}

void MainWindow::FollowTable() {
  if (following_) return;
  std::vector<int> points;
  for (const QItemSelectionRange& range : table_->selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) points.push_back(model_->PointAt(row));
  }
  const QModelIndex current = table_->currentIndex();
  if (current.isValid()) {
    const auto at = std::find(points.begin(), points.end(), model_->PointAt(current.row()));
    if (at != points.end()) std::swap(*at, points.front());
  }
  if (!points.empty()) map_->BringIntoView(points.front());
  map_->SetSelected(std::move(points));
}

void MainWindow::ApplyFilter() {
  filter_timer_->stop();
  PointModel::Filter filter;
  filter.text = ToAnsi(filter_text_->text());
  filter.column = filter_column_->currentIndex() - 1;
  if (filter_state_->currentIndex() > 0) filter.state = static_cast<PointState>(filter_state_->currentIndex() - 1);
  const std::vector<int> selected = map_->selected();
  model_->SetFilter(std::move(filter));
  Select(selected);
  ShowCounts();
}

}  // namespace korvo
