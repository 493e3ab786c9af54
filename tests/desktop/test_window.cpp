#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QHelpEvent>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProxyStyle>
#include <QStatusBar>
#include <QStringEncoder>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/desktop/desktop_front_end.h"
#include "korvo/desktop/main_window.h"
#include "korvo/desktop/nas_file.h"
#include "korvo/desktop/nas_window.h"
#include "korvo/desktop/notice_bar.h"
#include "korvo/desktop/recent_menu.h"
#include "korvo/desktop/settings.h"
#include "korvo/host/lock.h"
#include "korvo/host/project.h"
#include "tests/desktop/pilot/hands.h"
#include "tests/support/faulty_files.h"
#include "tests/support/table_file.h"

namespace {

using support::TableFile;

/// One in which a single click means what Enter means.
class SingleClickStyle : public QProxyStyle {
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override {
    return hint == SH_ItemView_ActivateItemOnSingleClick ? 1 : QProxyStyle::styleHint(hint, option, widget, more);
  }
};

/// The window on a project of four points: one with the zone in its easting, one deleted record, one hostile remark.
class Window : public testing::Test {
 protected:
  Window() {
    std::vector<support::TableColumn> columns = support::PointColumns();
    columns.push_back({"REM", 'C', 30, 0});
    TableFile table(columns);
    table.Add({{"PT_NO", "1001"}, {"EAST", "649900.000"}, {"NORTH", "5651000.0"}, {"REM", "a\nb\r\x01 <b>&x"}});
    table.Add({{"PT_NO", "1002"}, {"EAST", "649950.000"}, {"NORTH", "5651000.0"}}, true);
    const std::string further = "AX_PunktortAU|DE4|AX_PunktortAU|DE5|";
    table.Add(
        {{"PT_NO", "1003"}, {"EAST", "32649910.0"}, {"NORTH", "5651010"}, {"GMLID", "DE3"}, {"NE_WEPO", further}});
    table.Add({{"PT_NO", "   7"}, {"EAST", "649920.000"}, {"NORTH", "5651000.0"}, {"NE_PO", "1"}, {"NE_AKTION", "2"}});
    path_ = folder_.Write("punkte.dbf", table.Bytes());
    korvo::SetFrontEnd(&front_end_);
    window_.show();
    window_.Open(QString::fromStdString(folder_.path()));
  }
  ~Window() override {
    korvo::CloseProject();
    korvo::SetFrontEnd(nullptr);
  }

  template <class Widget>
  Widget* Find(const char* name) {
    return window_.findChild<Widget*>(QString::fromLatin1(name));
  }
  bool Notices(const char* text) {
    const auto bars = window_.findChildren<korvo::NoticeBar*>();
    return std::any_of(bars.begin(), bars.end(), [text](const korvo::NoticeBar* bar) {
      return bar->isVisible() && bar->findChildren<QLabel*>().back()->text().contains(QString::fromUtf8(text));
    });
  }
  void Click(int point) {
    QTest::mouseClick(&window_.map(), Qt::LeftButton, {}, window_.map().PlaceOf(point).toPoint() + QPoint(3, -2));
  }
  void Type(const char* text, const char* field = "find") {
    auto* edit = Find<QLineEdit>(field);
    edit->clear();
    QTest::keyClicks(edit, QString::fromLatin1(text));
    QTest::keyClick(edit, Qt::Key_Return);
  }
  /// In the picker that is open.
  void PickFile(const QString& named) {
    ASSERT_NE(qobject_cast<QFileDialog*>(front_end_.front()), nullptr);
    pilot::PickFile(front_end_.front(), named);
  }
  std::int32_t PickWhile(const std::function<void()>& act) {
    QTimer::singleShot(0, act);
    return waits_.WaitForPick(window_);
  }

  support::TempFolder folder_;
  std::string path_;
  korvo::Waits waits_;
  korvo::MainWindow window_{waits_, PKTAUS_BIN_DIR "/libpkt_aus.so"};
  korvo::DesktopFrontEnd front_end_{window_, waits_, platform::SystemClock()};
};

TEST_F(Window, MapAndTableAndFindFieldPickTheSamePoints) {
  auto* table = Find<QTableView>("table");
  const auto row = [&] { return table->selectionModel()->selectedRows().value(0).row(); };
  Click(1);
  EXPECT_EQ(row(), 1);
  Type("7");
  EXPECT_EQ(row(), 2) << "blanks in front of a number";
  table->selectRow(0);
  EXPECT_EQ(window_.map().selected(), std::vector<int>{0});
  const QModelIndex remark = table->model()->index(0, table->model()->columnCount() - 1);
  EXPECT_EQ(remark.data().toString(), QStringLiteral("a↵b←\u2401 <b>&x"));
  Type("de3", "filter");
  EXPECT_EQ(table->model()->rowCount(), 1);
  Type("", "filter");
  auto* filter = Find<QLineEdit>("filter");
  filter->setText(remark.data().toString().left(5));
  QTest::keyClick(filter, Qt::Key_Return);
  EXPECT_EQ(table->model()->rowCount(), 1) << "signs as they are shown";
  Type("", "filter");
  for (const int width : {400, 40}) {
    table->setColumnWidth(remark.column(), width);
    table->scrollTo(remark);
    const QPoint at = table->visualRect(remark).center();
    QHelpEvent asks(QEvent::ToolTip, at, table->viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(table->viewport(), &asks);
    EXPECT_EQ(QToolTip::text().contains(QStringLiteral("&lt;b&gt;")), width == 40);
  }
  const auto icon = table->model()->index(2, 0).data(Qt::DecorationRole).value<QIcon>();
  EXPECT_EQ(icon.pixmap(16, QIcon::Selected).toImage(), icon.pixmap(16).toImage());

  EXPECT_EQ(PickWhile([&] { Click(1); }), 3);
  EXPECT_EQ(PickWhile([&] { Type("1001"); }), 1);
  EXPECT_EQ(PickWhile([&] { table->setFocus(), table->selectRow(2), QTest::keyClick(table, Qt::Key_Return); }), 4);
  SingleClickStyle style;
  table->setStyle(&style);
  const auto at = [&](int point) { return table->visualRect(table->model()->index(point, 0)).center(); };
  EXPECT_EQ(PickWhile([&] {
              for (const int point : {0, 1}) {
                QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, at(point));
                EXPECT_EQ(window_.map().selected(), std::vector<int>{point});
              }
              QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, at(1));
            }),
            3);
  table->setStyle(nullptr);
  EXPECT_EQ(PickWhile([&] { QTest::keyClick(&window_, Qt::Key_Escape); }), 0);
  EXPECT_EQ(PickWhile([&] { Type("100"), Click(0); }), 1) << "a part of a number picks nothing";
}

TEST_F(Window, IsWorkedByKeyboardAlone) {
  std::multiset<QString> bar;
  for (const QAction* menu : window_.menuBar()->actions()) {
    bar.insert(QKeySequence::mnemonic(menu->text()).toString());
    std::multiset<QString> letters;
    for (const QAction* entry : menu->menu()->actions()) {
      const QString letter = QKeySequence::mnemonic(entry->text()).toString();
      if (!letter.isEmpty()) letters.insert(letter);
      if (!entry->shortcut().isEmpty()) bar.insert(entry->shortcut().toString());
    }
    for (const QString& letter : letters) EXPECT_EQ(letters.count(letter), 1U) << letter.toStdString();
  }
  window_.FileSaved(QString::fromStdString(path_));
  for (const auto* button : window_.findChildren<QAbstractButton*>()) {
    if (button->isVisible() && !button->shortcut().isEmpty()) bar.insert(button->shortcut().toString());
  }
  for (const QString& keys : bar) EXPECT_EQ(bar.count(keys), 1U) << keys.toStdString();

  ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
  std::string stops;
  QWidget* at = Find<QLineEdit>("find");
  at->setFocus();
  do {
    stops += at->objectName().toStdString() + " ";
    QTest::keyClick(at, Qt::Key_Tab);
    at = QApplication::focusWidget();
  } while (at != Find<QLineEdit>("find") && stops.size() < 200);
  EXPECT_EQ(stops, "find find_button map filter filter_column filter_state table   ");

  auto* table = Find<QTableView>("table");
  table->setCurrentIndex(table->model()->index(0, 1));
  for (const char* first : {"649900.000", "32649910.0", "649900.000"}) {
    QTest::keyClick(&window_, Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(table->model()->index(0, 1).data().toString(), QString::fromLatin1(first));
  }

  std::filesystem::create_directory(folder_.File("akten"));
  const QString file = QString::fromStdString(
      folder_.Write("akten/a.xml", "<T><Insert><P gml:id=\"DE1\"><punktkennung>1001</punktkennung></P></Insert></T>"));
  for (const auto& [named, size] : {std::pair(file, QSize(800, 740)), {QStringLiteral("a.xml"), QSize(701, 602)}}) {
    QTimer::singleShot(0, [&, named = named] { PickFile(named); });
    QTest::keyClick(&window_, Qt::Key_N, Qt::ControlModifier);
    auto* const nas = window_.findChild<korvo::NasWindow*>();
    ASSERT_NE(nas, nullptr);
    EXPECT_EQ(nas->size(), size) << "of the screen, then of the last one";
    auto* const members = nas->findChild<QTableView*>(QStringLiteral("nas_members"));
    table->selectRow(2);
    nas->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(nas));
    QTest::keyClick(members, Qt::Key_Return);
    EXPECT_EQ(window_.map().selected(), std::vector<int>{0});
    EXPECT_TRUE(nas->isVisible());
    nas->resize(701, 602);
    QTest::keyClick(nas, Qt::Key_Escape);
    EXPECT_FALSE(nas->isVisible());
    QCoreApplication::sendPostedEvents(nas, QEvent::DeferredDelete);
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
  }
}

TEST_F(Window, TellsWhatItsOwnFunctionsThrow) {
  const std::pair<std::function<void()>, const char*> kClauses[] = {
      {[] { throw std::bad_alloc(); }, "Der Arbeitsspeicher reicht nicht aus."},
      {[] { throw std::filesystem::filesystem_error("", std::make_error_code(std::errc::permission_denied)); },
       "Zugriff verweigert."},
      {[] { throw 7; }, "Unerwarteter Fehler."},
  };
  for (const auto& [work, told] : kClauses) {
    QAction action;
    window_.edge().Connect(&action, &QAction::triggered, &action, work);
    action.trigger();
    EXPECT_TRUE(Notices(told)) << told;
  }
}

TEST_F(Window, ShowsAtOnceWhatIsWritten) {
  EXPECT_EQ(window_.points().CountOf(korvo::PointState::kDelete), 1);
  d4select(V2_VAR->points->data);
  d4go(3);
  f4r_double(f4ref("NE_PO"), 1);
  f4r_double(f4ref("NE_AKTION"), 1);
  db_write(3);
  EXPECT_EQ(window_.points().State(1), korvo::PointState::kReplace);
  EXPECT_EQ(window_.points().CountOf(korvo::PointState::kPlain), 1);
}

TEST_F(Window, TakesPointsForWhatTheirColumnsSay) {
  using korvo::PointState;
  const struct {
    const char *east, *north, *kind, *action;
    bool placed;
    PointState state;
  } kPoints[] = {{"649900", "5651000", "1", "", true, PointState::kNew},
                 {"649900", "", "3", "2", false, PointState::kDelete},
                 {"", "5651000", "1", "3", false, PointState::kUnknown},
                 {"649910", "0", "1", "-1", false, PointState::kUnknown},
                 {"649910", "5651010", "0", "3", true, PointState::kPlain}};
  TableFile table(support::PointColumns());
  for (const auto& p : kPoints)
    table.Add({{"EAST", p.east}, {"NORTH", p.north}, {"NE_PO", p.kind}, {"NE_AKTION", p.action}});
  folder_.Write("punkte.dbf", table.Bytes());
  window_.Reload();
  const korvo::PointSet& points = window_.points();
  for (int i = 0; i < points.count(); ++i) {
    EXPECT_EQ(points.HasPlace(i), kPoints[i].placed) << i;
    EXPECT_EQ(points.State(i), kPoints[i].state) << i;
  }
  EXPECT_EQ(points.bounds().south, 5651000);
  EXPECT_EQ(points.CountOf(PointState::kUnknown), 2);
}

TEST_F(Window, ReloadsTheTableThatIsThereNow) {
  const std::string bytes = support::BytesOf(path_);
  const std::size_t number = bytes.find("1001");
  const struct {
    const char* number;
    bool in_place;
    std::size_t size;
    const char* notice;
  } kTables[] = {{"2001", true, bytes.size(), ""},
                 {"3001", false, bytes.size(), ""},
                 {"", false, 40, "nicht lesbar"},
                 {"4001", true, bytes.size(), ""}};
  for (const auto& t : kTables) {
    const std::string other = std::string(bytes).replace(number, 4, t.number).substr(0, t.size);
    const std::string written = folder_.Write(t.in_place ? "punkte.dbf" : "sicherung", other);
    std::filesystem::rename(written, path_);
    Find<QTableView>("table")->selectRow(0);
    window_.Reload();
    EXPECT_TRUE(window_.map().selected().empty()) << "of another number";
    EXPECT_EQ(Find<QAction>("save_map")->isEnabled(), *t.notice == '\0');
    EXPECT_EQ(window_.points().count() > 0 ? window_.points().Number(0) : "", t.number);
    EXPECT_EQ(Find<QWidget>("project_notice")->isVisible(), *t.notice != '\0') << t.number;
    EXPECT_TRUE(*t.notice == '\0' || Notices(t.notice));
  }
}

TEST_F(Window, OrdersNumbersByValueInFrontOfOthers) {
  std::vector<const char*> numbers = {"1a", "9", "10", "2", "11b", "100", "007", "   8"};
  const QAbstractItemModel& rows = *Find<QTableView>("table")->model();
  for (const char* const order : {"in the file", "the other way round"}) {
    TableFile table(support::HostColumns());
    for (const char* number : numbers) table.Add({{"PT_NO", number}});
    folder_.Write("punkte.dbf", table.Bytes());
    window_.Reload();
    Find<QTableView>("table")->sortByColumn(0, Qt::AscendingOrder);
    std::string shown;
    for (int i = 0; i < rows.rowCount(); ++i) shown += rows.index(i, 0).data().toString().trimmed().toStdString() + " ";
    EXPECT_EQ(shown, "2 007 8 9 10 100 11b 1a ") << order;
    std::reverse(numbers.begin(), numbers.end());
  }
}

TEST_F(Window, StaysUsableWhenAProjectCannotBeOpened) {
  std::filesystem::create_directory(folder_.File("leer"));
  folder_.Write("brief.txt", "kein dBase");
  for (const auto& [bad, why] :
       {std::pair("leer", "keine Punkttabelle"), {"fehlt", "nicht finden"}, {"brief.txt", "weder"}}) {
    window_.Open(QString::fromStdString(folder_.File(bad)));
    EXPECT_TRUE(Notices(why)) << bad;
    EXPECT_EQ(window_.points().count(), 3) << "what was open is open again";
  }
  const std::string pipe = folder_.File(std::string(250, 'n'));
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(window_.OpenNas(QString::fromStdString(pipe)), nullptr);
  EXPECT_TRUE(Notices("Es ist keine Datei."));
  QCoreApplication::processEvents();
  EXPECT_LT(window_.minimumSizeHint().width(), 1200) << "a long name";
  const std::string broken = folder_.Write("kaputt.dbf", "\x03 keine Tabelle");
  window_.Open(QString::fromStdString(broken));
  EXPECT_TRUE(Notices("nicht lesbar"));
  EXPECT_EQ(window_.points().count(), 0);
  auto* recent = window_.findChild<korvo::RecentMenu*>();
  for (const int offered : {2, 1}) {
    Q_EMIT recent->aboutToShow();
    EXPECT_EQ(recent->actions().size(), offered) << "what is gone is not";
    std::filesystem::remove(broken);
  }
}

TEST_F(Window, OfASecondUserOnlyShows) {
  korvo::CloseProject();
  korvo::ProjectLock first;
  std::string why;
  ASSERT_TRUE(first.Take(path_, &why)) << why;
  window_.Open(QString::fromStdString(folder_.path()));
  EXPECT_EQ(window_.points().count(), 3);
  EXPECT_TRUE(Notices("schon geöffnet"));
  EXPECT_FALSE(Find<QAction>("command_6")->isEnabled());
  EXPECT_EQ(window_.OpenNas(QStringLiteral("/gibt/es/nicht")), nullptr);
  EXPECT_TRUE(Notices("schon geöffnet")) << "and what failed";
  std::filesystem::rename(path_, folder_.File("fort"));
  window_.Reload();
  EXPECT_TRUE(Notices("keine Punkttabelle"));
  std::filesystem::rename(folder_.File("fort"), path_);
  first.Release();
  window_.Reload();
  EXPECT_TRUE(Find<QAction>("command_6")->isEnabled());
}

TEST_F(Window, StartsThePluginForACommandAndEndsItByClosing) {
  int closed = 0;
  std::string bytes = support::BytesOf(path_);
  const std::size_t at = bytes.find("1001");
  QObject::connect(&window_, &korvo::MainWindow::Closed, [&] { ++closed; });
  for (const int command : {6, 2, 4, 8, 10}) {
    const std::string number = std::to_string(2000 + command);
    window_.show();
    QTimer::singleShot(100, [&] {
      EXPECT_EQ(Find<QWidget>("end_pick")->isVisible(), command == 6);
      EXPECT_EQ(front_end_.front() != nullptr, command != 6);
      EXPECT_GE(window_.points().FindColumn("NE_WEPO"), 0);
      bytes.replace(at, 4, number);
      std::filesystem::rename(folder_.Write("sicherung", bytes), path_);
      window_.close();
      EXPECT_TRUE(window_.isVisible()) << "not before the plug-in has ended";
    });
    Find<QAction>(("command_" + std::to_string(command)).c_str())->trigger();
    EXPECT_FALSE(waits_.plugin_runs());
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(window_.points().Number(0), number) << "the table that is there now";
  }
  EXPECT_EQ(closed, 5);
}

TEST_F(Window, EndsAPickForAnotherProjectAndSaysSo) {
  std::filesystem::create_directory(folder_.File("anderes"));
  std::filesystem::copy(path_, folder_.File("anderes"));
  Click(0);
  EXPECT_FALSE(window_.map().selected().empty());
  QTimer::singleShot(100, [&] {
    EXPECT_TRUE(Find<QWidget>("end_pick")->isVisible());
    QTimer::singleShot(0, [&] { PickFile(QString::fromStdString(folder_.File("anderes/punkte.dbf"))); });
    QTest::keyClick(&window_, Qt::Key_O, Qt::ControlModifier);
  });
  Find<QAction>("command_6")->trigger();
  EXPECT_FALSE(waits_.plugin_runs());
  EXPECT_EQ(window_.windowTitle(), QStringLiteral("Korvo – anderes"));
  EXPECT_TRUE(window_.map().selected().empty());
  EXPECT_EQ(window_.statusBar()->currentMessage(), QStringLiteral("Die Punktabfrage wurde beendet."));
}

TEST_F(Window, RemembersTheFolderOfWhatItCouldOpenOrWrite) {
  std::filesystem::create_directory(folder_.File("ort"));
  folder_.Write("ort/brief.txt", "kein dBase");
  const struct {
    Qt::Key key;
    const char* file;
    bool goes;
    const char* notice;
    int disk = 0;    ///< what each write fails with
    int ending = 0;  ///< letters at the end that the person leaves out
  } kCases[] = {
      {Qt::Key_O, "ort/brief.txt", false, "weder"},
      {Qt::Key_N, "/dev/null", false, "Es ist keine Datei."},
      {Qt::Key_K, "ort/karte.png", false, "karte.png gespeichert werden: Auf dem Datenträger ist kein Platz", ENOSPC},
      {Qt::Key_K, "ort/karte.pdf", false, "karte.pdf gespeichert werden: Auf dem Datenträger ist kein Platz", ENOSPC},
      {Qt::Key_K, "ort/ł.png", false, "ł.png gespeichert werden: Der Pfad enthält Zeichen"},
      {Qt::Key_K, "ort/karte.png", true, ""},
      {Qt::Key_K, "ort/Lage 1.3.png", true, "", 0, 4},
      {Qt::Key_O, "punkte.dbf", true, ""},
  };
  for (const auto& c : kCases) {
    const QString file = QDir(QString::fromStdString(folder_.path())).filePath(QString::fromUtf8(c.file));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    const support::FaultyFiles files([&](int, const std::string& call) { return call == "Write" ? c.disk : 0; });
    QTimer::singleShot(0, [&] { PickFile(file.chopped(c.ending)); });
    QTest::keyClick(&window_, c.key, Qt::ControlModifier);
    EXPECT_TRUE(c.goes || Notices(c.notice)) << c.file;
    EXPECT_EQ(QFileInfo::exists(file), c.goes || c.key != Qt::Key_K) << c.file;
    EXPECT_EQ(korvo::Remembered().value(QStringLiteral("ordner/letzter")) == QFileInfo(file).path(), c.goes) << c.file;
  }
}

TEST_F(Window, KeepsTheTagOfALongPointInTheMap) {
  std::vector<support::TableColumn> columns = support::HostColumns();
  columns.push_back({"NE_PKN", 'C', 254, 0});
  TableFile table(columns);
  table.Add({{"PT_NO", "1"}, {"EAST", "649900.0"}, {"NORTH", "5651000.0"}, {"NE_PKN", std::string(250, '\x01')}});
  folder_.Write("punkte.dbf", table.Bytes());
  window_.Open(QString::fromStdString(path_));
  korvo::MapView& map = window_.map();
  const QImage before = map.grab().toImage();
  QTest::mouseMove(&map, map.PlaceOf(0).toPoint());
  const QImage after = map.grab().toImage();
  QRect changed;
  for (int x = 0; x < after.width(); ++x) {
    for (int y = 0; y < after.height(); ++y) {
      if (after.pixel(x, y) != before.pixel(x, y)) changed |= QRect(x, y, 1, 1);
    }
  }
  EXPECT_GT(changed.width(), after.width() / 4);
  EXPECT_LT(changed.width(), after.width() * 2 / 5);
}

TEST_F(Window, IsClosedFromItsOwnPickersAndTheirQuestion) {
  const QString map = QString::fromStdString(folder_.Write("karte.png", "alt"));
  for (const bool plugin_waits : {false, true}) {
    for (const Qt::Key key : {Qt::Key_O, Qt::Key_N, Qt::Key_K}) {
      SCOPED_TRACE(key);
      window_.show();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
      const auto close = [&] {
        EXPECT_EQ(qobject_cast<QMessageBox*>(front_end_.front()) != nullptr, key == Qt::Key_K);
        EXPECT_EQ(QGuiApplication::modalWindow(), nullptr);
        QTest::keyClick(&window_, Qt::Key_F2);
        window_.windowHandle()->close();
        EXPECT_TRUE(window_.isVisible()) << "not before what is open above it";
      };
      const auto open = [&] {
        QTimer::singleShot(0, [&] {
          QTimer::singleShot(0, close);
          if (key == Qt::Key_K) PickFile(map);
        });
        QTest::keyClick(&window_, key, Qt::ControlModifier);
      };
      QTimer::singleShot(0, open);
      plugin_waits ? window_.StartPlugin() : QTest::qWait(50);
      EXPECT_FALSE(window_.isVisible() || waits_.plugin_runs() || front_end_.front() != nullptr);
    }
  }
  EXPECT_EQ(QFileInfo(map).size(), 3);
}

TEST_F(Window, FindsTheNearestOf100000PointsAsAWalkOverAllDoes) {
  TableFile table(support::HostColumns());
  table.Add({{"PT_NO", "weit weg"}, {"EAST", "1.5"}, {"NORTH", "2.5"}});
  const auto metres = [](int base, long i) { return std::to_string(base + i % 10007); };
  for (int i = 1; i < 100'000; ++i) {
    table.Add(
        {{"PT_NO", std::to_string(i)}, {"EAST", metres(640000, i * 7919L)}, {"NORTH", metres(5650000, i * 104729L)}});
  }
  folder_.Write("punkte.dbf", table.Bytes());
  window_.Open(QString::fromStdString(path_));
  const korvo::PointSet& points = window_.points();
  ASSERT_EQ(points.count(), 100'000);
  for (const auto& [east, radius] : {std::pair(645000.4, 60.0), {640003.0, 9.0}, {649999.0, 0.5}, {100000.0, 1e7}}) {
    const auto away = [&](int i) { return std::hypot(points.East(i) - east, points.North(i) - 5655000.3); };
    int nearest = 0;
    for (int i = 1; i < points.count(); ++i) nearest = away(i) < away(nearest) ? i : nearest;
    EXPECT_EQ(points.Nearest(east, 5655000.3, radius), away(nearest) <= radius ? nearest : -1) << east;
  }
}

TEST_F(Window, MarksThePointsOfACutNasFileInAnyEncoding) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<A>\n\t<k>Straße</k>\n\t<wfs:Transaction>\n"
      "\t\t<wfs:Insert>\n\t\t\t<AX_Grenzpunkt gml:id=\"DE1\">\n\t\t\t\t<punktkennung>1001</punktkennung>ü"
      "</AX_Grenzpunkt><AX_PunktortTA gml:id=\"DE2\"><istTeilVon xlink:href=\"urn:adv:oid:DE1\"/></AX_PunktortTA>"
      "</wfs:Insert>\n\t\t<wfs:Delete typeName=\"AX_PunktortTA\"><fes:Filter>"
      "<fes:ResourceId rid=\"DE320160302T090503Z\"/></fes:Filter></wfs:Delete><wfs:Update typeName=\"AX_PunktortAU\">"
      "<wfs:Property/><fes:ResourceId rid=\"DE5\"/></wfs:Update><wfs:Replace><P gml:id=\"DE6\"/><fes:Filter/>"
      "</wfs:Replace></wfs:Transaction><wfs:member> <b:AX_Grenzpunkt gml:id=\"DE7\"><b:punktkennung>1003"
      "</b:punktkennung></b:AX_Grenzpunkt></wfs:member><gml:featureMember/><gml:featureMember><P/></gml:featureMember>"
      "\n\t<cut";
  const QString wide = QString::fromStdString(text);
  const QByteArray marked = QStringEncoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom)(wide);
  const QByteArray unmarked = QStringEncoder(QStringEncoder::Utf16BE)(wide);
  for (const std::string& bytes :
       {"\xEF\xBB\xBF" + text, text::FromUtf8(text).value(), marked.toStdString(), unmarked.toStdString()}) {
    korvo::NasFile file;
    QString why;
    ASSERT_TRUE(file.Read(QString::fromStdString(folder_.Write("a.xml", bytes)), &why));
    EXPECT_FALSE(file.trouble().isEmpty());
    QStringList told;
    for (const korvo::NasMember& member : file.members())
      told << korvo::NameOf(member.kind) + file.types()[static_cast<std::size_t>(member.type)] + member.id;
    EXPECT_EQ(told.join(u' ').toStdString(),
              "EinfügenAX_GrenzpunktDE1 EinfügenAX_PunktortTADE2 LöschenAX_PunktortTADE3 ÄndernAX_PunktortAUDE5 "
              "ErsetzenPDE6 BestandAX_GrenzpunktDE7 BestandP");
    ASSERT_EQ(korvo::PointsOf(file, window_.points()), (std::vector<int>{0, 0, 1, 1, -1, 1, -1}));
    EXPECT_TRUE(file.TextOf(file.members()[0]).startsWith(QStringLiteral("<AX_Grenzpunkt gml:id=\"DE1\">\n  <p")));
    EXPECT_TRUE(file.TextOf(file.members()[0]).endsWith(QStringLiteral("ü</AX_Grenzpunkt>")));
    EXPECT_TRUE(file.TextOf(file.members()[3]).startsWith(QStringLiteral("<wfs:Update")));
    EXPECT_EQ(file.TextOf(file.members()[6]), QStringLiteral("<P/>"));
  }

  for (const auto& [bytes, summary, row] :
       {std::tuple("<A><member><P gml:id=\"D&#10;E\"/></member></A>", "Objekte: 1", "Bestand P D↵E"),
        {"<A><wfs:Insert/></A>", "Die Datei enthält keine NAS-Objekte", ""}}) {
    korvo::NasWindow* nas = window_.OpenNas(QString::fromStdString(folder_.Write("a.xml", bytes)));
    EXPECT_TRUE(nas->findChild<QLabel*>()->text().startsWith(QString::fromUtf8(summary)));
    const QAbstractItemModel& model = *nas->findChild<QTableView*>(QStringLiteral("nas_members"))->model();
    QStringList shown;
    for (int i = 0; model.rowCount() > 0 && i < 3; ++i) shown << model.index(0, i).data().toString();
    EXPECT_EQ(shown.join(u' '), QString::fromUtf8(row));
  }
}

TEST_F(Window, EndsTheViewOfANasFileAtAnElementWithTooManyAttributes) {
  for (const int count : {1000, 1001, 40'000}) {
    std::string attributes;
    for (int i = 0; i < count; ++i) attributes += " a" + std::to_string(i) + "='>\"'";
    korvo::NasFile file;
    QString why;
    const std::string text =
        "<A><!-- <b \" --><![CDATA[<b \"]]><m:member><P/></m:member>\n<b" + attributes + "/><member><Q/></member></A>";
    ASSERT_TRUE(file.Read(QString::fromStdString(folder_.Write("a.xml", text)), &why));
    EXPECT_EQ(file.members().size(), count == 1000 ? 2U : 1U);
    EXPECT_EQ(file.trouble(), count == 1000
                                  ? QString()
                                  : QStringLiteral("Ab Zeile 2 wird die Datei nicht mehr gezeigt: Ein Element "
                                                   "hat mehr als 1000 Attribute."));
  }
}

}  // namespace
