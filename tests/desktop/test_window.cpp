#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <filesystem>
#include <tuple>

#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/desktop/desktop_front_end.h"
#include "korvo/desktop/main_window.h"
#include "korvo/desktop/nas_file.h"
#include "korvo/host/lock.h"
#include "korvo/host/project.h"
#include "tests/support/table_file.h"

namespace {

using support::TableFile;

/// The window on a project of four points: one with the zone in its easting, one deleted record, one hostile remark.
class Window : public testing::Test {
 protected:
  Window() {
    std::vector<support::TableColumn> columns = support::PointColumns();
    columns.push_back({"REM", 'C', 30, 0});
    TableFile table(columns);
    table.Add({{"PT_NO", "1001"}, {"EAST", "649900.000"}, {"NORTH", "5651000.0"}, {"REM", "a\nb\r\x01 <b>&x"}});
    table.Add({{"PT_NO", "1002"}, {"EAST", "649950.000"}, {"NORTH", "5651000.0"}}, true);
    table.Add({{"PT_NO", "1003"},
               {"EAST", "32649910.0"},
               {"NORTH", "5651010.0"},
               {"GMLID", "DEPOS"},
               {"NE_WEPO", "AX_PunktortAU|DEAU1|AX_PunktortAU|DEAU2|"}});
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

  template <class Widget = QWidget>
  Widget* Find(const char* name) {
    return window_.findChild<Widget*>(QString::fromLatin1(name));
  }
  QString Notice() {
    const auto labels = Find("project_notice")->findChildren<QLabel*>();
    return Find("project_notice")->isVisible() ? labels.back()->text() : QString();
  }
  void Click(int point) {
    QTest::mouseClick(&window_.map(), Qt::LeftButton, {}, window_.map().PlaceOf(point).toPoint() + QPoint(3, -2));
  }
  void Type(const char* number) {
    Find<QLineEdit>("find")->clear();
    QTest::keyClicks(Find("find"), QString::fromLatin1(number));
    QTest::keyClick(Find("find"), Qt::Key_Return);
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
  QTest::keyClicks(Find("filter"), QStringLiteral("POS"));
  QTest::keyClick(Find("filter"), Qt::Key_Return);
  EXPECT_EQ(table->model()->rowCount(), 1);
  const int remark = table->model()->columnCount() - 1;
  Find<QLineEdit>("filter")->clear();
  QTest::keyClick(Find("filter"), Qt::Key_Return);
  EXPECT_FALSE(table->model()->index(0, remark).data().toString().contains(QChar(u'\n')));

  EXPECT_EQ(PickWhile([&] { Click(1); }), 3);
  EXPECT_EQ(PickWhile([&] { Type("1001"); }), 1);
  EXPECT_EQ(PickWhile([&] { table->selectRow(2), QTest::keyClick(table, Qt::Key_Return); }), 4);
  EXPECT_EQ(PickWhile([&] { QTest::keyClick(&window_, Qt::Key_Escape); }), 0);
  EXPECT_EQ(PickWhile([&] { Type("100"), Click(0); }), 1) << "a part of a number picks nothing";
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

TEST_F(Window, StaysUsableWhenAProjectCannotBeOpened) {
  const std::string empty = folder_.File("leer");
  std::filesystem::create_directory(empty);
  for (const std::string& bad : {empty, folder_.File("fehlt"), folder_.Write("brief.txt", "kein dBase")}) {
    window_.Open(QString::fromStdString(bad));
    EXPECT_FALSE(Notice().isEmpty()) << bad;
    EXPECT_EQ(window_.points().count(), 3) << "what was open is open again";
  }
  window_.Open(QString::fromStdString(folder_.Write("kaputt.dbf", "\x03 keine Tabelle")));
  EXPECT_TRUE(Notice().contains(QStringLiteral("nicht lesbar"))) << Notice().toStdString();
  EXPECT_EQ(window_.points().count(), 0);
}

TEST_F(Window, OfASecondUserOnlyShows) {
  korvo::CloseProject();
  korvo::ProjectLock first;
  std::string why;
  ASSERT_TRUE(first.Take(path_, &why)) << why;
  window_.Open(QString::fromStdString(folder_.path()));
  EXPECT_EQ(window_.points().count(), 3);
  EXPECT_TRUE(Notice().contains(QStringLiteral("schon geöffnet"))) << Notice().toStdString();
  EXPECT_FALSE(Find<QAction>("command_6")->isEnabled());
  first.Release();
  window_.Reload();
  EXPECT_TRUE(Find<QAction>("command_6")->isEnabled());
}

TEST_F(Window, StartsThePluginForACommandAndEndsItByClosing) {
  int closed = 0;
  QObject::connect(&window_, &korvo::MainWindow::Closed, [&] { ++closed; });
  QTimer::singleShot(100, [&] {
    EXPECT_TRUE(Find("end_pick")->isVisible());
    EXPECT_GE(window_.points().FindColumn("NE_WEPO"), 0);
    window_.close();
    EXPECT_TRUE(window_.isVisible()) << "not before the plug-in has ended";
  });
  Find<QAction>("command_6")->trigger();
  EXPECT_FALSE(waits_.plugin_runs());
  EXPECT_EQ(closed, 1);
}

TEST_F(Window, FindsTheNearestOf100000PointsAsAWalkOverAllDoes) {
  TableFile table(support::HostColumns());
  table.Add({{"PT_NO", "weit weg"}, {"EAST", "1.5"}, {"NORTH", "2.5"}});
  for (int i = 1; i < 100'000; ++i) {
    table.Add({{"PT_NO", std::to_string(i)},
               {"EAST", std::to_string(640000 + i * 7919 % 10007)},
               {"NORTH", std::to_string(5650000 + i * 104729LL % 9973)}});
  }
  folder_.Write("punkte.dbf", table.Bytes());
  window_.Open(QString::fromStdString(path_));
  const korvo::PointSet& points = window_.points();
  ASSERT_EQ(points.count(), 100'000);
  for (const auto& [east, north, radius] :
       {std::tuple(645000.4, 5655000.3, 60.0), std::tuple(640003.0, 5650100.0, 9.0), std::tuple(3.0, 3.0, 5.0),
        std::tuple(649999.0, 5659999.0, 0.5), std::tuple(100000.0, 100000.0, 1e7)}) {
    int nearest = -1;
    double least = radius;
    for (int i = 0; i < points.count(); ++i) {
      const double away = std::hypot(points.East(i) - east, points.North(i) - north);
      if (away < least || (away == least && nearest < 0)) nearest = i, least = away;
    }
    EXPECT_EQ(points.Nearest(east, north, radius), nearest) << east;
  }
}

TEST_F(Window, MarksThePointsOfANasFileInAnyEncoding) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<A>\n\t<k>Straße</k>\n\t<wfs:Transaction>\n"
      "\t\t<wfs:Insert>\n\t\t\t<AX_Grenzpunkt gml:id=\"DE1\"><punktkennung>1001</punktkennung>ü</AX_Grenzpunkt>"
      "</wfs:Insert><wfs:Insert><AX_PunktortTA gml:id=\"DE2\"><istTeilVon xlink:href=\"urn:adv:oid:DE1\"/>"
      "</AX_PunktortTA></wfs:Insert>\n\t\t<wfs:Delete typeName=\"AX_PunktortTA\"><fes:Filter>"
      "<fes:ResourceId rid=\"DEPOS20160302T090503Z\"/></fes:Filter></wfs:Delete><wfs:Delete typeName=\"AX_PunktortAU\">"
      "<fes:ResourceId rid=\"DEAU2\"/></wfs:Delete>\n\t</wfs:Transaction></A>";
  for (const std::string& bytes : {text, text::FromUtf8(text).value(), "\xEF\xBB\xBF" + text}) {
    korvo::NasFile file;
    QString why;
    ASSERT_TRUE(file.Read(QString::fromStdString(folder_.Write("a.xml", bytes)), &why));
    EXPECT_EQ(file.trouble(), QString());
    EXPECT_EQ(korvo::PointsOf(file, window_.points()), (std::vector<int>{0, 0, 1, 1}));
    for (const korvo::NasMember& member : file.members()) {
      const QString shown = file.TextOf(member);
      EXPECT_TRUE(shown.startsWith(QStringLiteral("<wfs:")) && shown.endsWith(QChar(u'>'))) << shown.toStdString();
    }
    EXPECT_TRUE(file.TextOf(file.members()[0]).contains(QStringLiteral("ü</AX_")));
  }
  korvo::NasFile cut;
  QString why;
  ASSERT_TRUE(cut.Read(QString::fromStdString(folder_.Write("cut.xml", text.substr(0, text.find("fes:R")))), &why));
  EXPECT_EQ(cut.members().size(), 2U);
  EXPECT_FALSE(cut.trouble().isEmpty());
}

}  // namespace
