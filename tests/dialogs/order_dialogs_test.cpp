// The dialogs around orders and imported data, on a table with points of all kinds.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog_store.h"
#include "dialogs/adopt_data_dialog.h"
#include "dialogs/gid_search_dialog.h"
#include "dialogs/order_export_dialog.h"
#include "entry/host/desktop.h"
#include "platform/file.h"
#include "store/point_table.h"
#include "tests/support/open_project.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

using namespace text::literals;
using toolkit::Dialog;
using toolkit::Pressed;
using toolkit::RowTicked;
using toolkit::Typed;

constexpr toolkit::ControlId kList = 7000, kAllOn = 7002, kOrders = 7006, kCount = 7010, kLine = 7021, kRemove = 7071;

// Rows come out in the reverse of the file: Aufnahmepunkt 0, Grenzpunkt 1.
constexpr const char* kCatalog =
    "[GLOBAL]\nHEADER = \"t.xml\"\n[T_marks]\n\"1\" = \"Stein\"\n[AX_PunktortTA]\nkoordinatenstatus = "
    "\"marks\"\n"
    "[AX_Grenzpunkt]\nort = \"PunktortTA\"\nabmarkung_Marke = \"marks\"\nbemerkungZurAbmarkung = \"marks\"\n"
    "[AX_Aufnahmepunkt]\nvermarkung_Marke = \"marks\"\n";
constexpr const char* kTemplate =
    "<r><antragsnummer/><auftragsnummer/><geaenderteObjekte><Transaction/></geaenderteObjekte></r>";

std::string Text(const Dialog& dialog, toolkit::ControlId id) {
  return dynamic_cast<toolkit::TextField&>(*dialog.Find(id)).text;
}
std::string Rows(const Dialog& dialog) {
  std::string rows;
  for (const auto& row : dynamic_cast<toolkit::TickList&>(*dialog.Find(kList)).rows()) rows += row.label + "\n";
  return rows;
}

class OrderDialogs : public testing::Test {
 protected:
  OrderDialogs() {
    SetPluginFolder(folder_.path());
    folder_.Write("16.ini", kCatalog);
    folder_.Write("t.xml", kTemplate);
    EXPECT_TRUE(get_catalog_store()->LoadCatalog(16));
    std::vector<support::TableColumn> columns = support::PointColumns();
    columns.push_back({"PKN_ABM_BZA", 'C', 60});
    columns.push_back({"NASTABLE", 'C', 40});
    support::TableFile table(std::move(columns));
    const auto add = [&](const char* number, const char* order, const char* application, const char* po,
                         const char* aktion, const char* pkn) {
      table.Add({{"PT_NO", number},
                 {"EAST", "650001.5"},
                 {"NORTH", "5651002"},
                 {"NE_AUFTRAG", order},
                 {"NE_PKN", pkn},
                 {"NE_ANTRAGN", application},
                 {"NE_PO", po},
                 {"NE_OA", "1"},
                 {"NE_AKTION", aktion},
                 {"GMLID", " G 1"}});
    };
    add("1", "b", "x", "1", "0", "");
    add("2", "a", "x", "1", "0", "");
    add("3", "a", "y", "1", "1", "P:3");
    add("4", "a", "x", "1", "2", "P4");
    add("5", "a", "y", "1", "5", "P5");
    add("6", "a", "", "1", "0", "P6");
    add("5", "c", "z", "1", "0", "second of its number");
    project_.emplace(std::move(table));
    columns_bind();
    get_catalog_store()->orders_clear();
    get_catalog_store()->orders_collect();
  }
  ~OrderDialogs() override { SetPluginFolder({}); }

  int Po(const char* number) const {
    PointRecord record{};
    return point_read(number, &record) < 0 ? -1 : record.po;
  }

  support::TempFolder folder_;
  std::optional<support::OpenProject> project_;
  support::ScriptedDesktop desktop_;
};

TEST_F(OrderDialogs, OrderShowsThePointsOfItsLastApplication) {
  COrderExportDlg dialog;
  dialog.Handle(toolkit::Opened{});
  EXPECT_EQ(dynamic_cast<toolkit::ChoiceList&>(*dialog.Find(kOrders)).entries().size(), 3U);
  EXPECT_EQ(Text(dialog, kLine), "Antrag: y andere ausgeblendet");
  EXPECT_EQ(Rows(dialog), " P5 - :5\nersetzen  P:3 - :3\n");
  dialog.Handle(Pressed{kAllOn});
  EXPECT_EQ(Text(dialog, kCount), "2 von 2");
  dialog.Handle(RowTicked{kList, 0, false});
  EXPECT_EQ(Text(dialog, kCount), "2 von 2") << "a single tick is not counted";
  dialog.Handle(toolkit::EntrySelected{kOrders, 1});
  EXPECT_EQ(Text(dialog, kLine), "Antrag: x");
  EXPECT_EQ(Rows(dialog), "Neupunkt  ohne Punktkennung :1\n");
  EXPECT_EQ(Text(dialog, kCount), "0 von 1");

  get_catalog_store()->orders_clear();
  COrderExportDlg empty;
  empty.Handle(toolkit::Opened{});
  EXPECT_EQ(Text(empty, kLine) + Text(empty, kCount), "Keine Aufträge vorhanden0 von 0"_ansi);
}

TEST_F(OrderDialogs, OrderIsWrittenFromTheTableAndClosesOnSuccessAlone) {
  COrderExportDlg dialog;
  dialog.Handle(toolkit::Opened{});
  const std::string out = folder_.File("out.xml");
  dialog.Handle(Pressed{toolkit::kOk});
  EXPECT_TRUE(desktop_.boxes.empty()) << "a cancelled picker says nothing";
  dialog.Handle(RowTicked{kList, 0, true});
  dialog.Handle(RowTicked{kList, 1, true});
  desktop_.paths = {out, out};
  dialog.Handle(Pressed{toolkit::kOk});
  EXPECT_TRUE(dialog.IsOpen());
  // The file runs from the last row to the first: the point with the unknown action comes second.
  EXPECT_EQ(desktop_.boxes.at(0).text, "Fehler: Aktion des Punktes P5 ist unbekannt");
  EXPECT_EQ(desktop_.boxes.at(0).title, "Datei anlegen Info");
  EXPECT_FALSE(platform::FileExists(out));
  dialog.Handle(RowTicked{kList, 0, false});
  dialog.Handle(Pressed{toolkit::kOk});
  EXPECT_FALSE(dialog.IsOpen());
  EXPECT_NE(support::BytesOf(out).find("<wfs:Replace>"), std::string::npos) << "the colon in P:3 names no point";
  EXPECT_EQ(desktop_.picks.at(0).title + desktop_.picks.at(0).path, "PKT AUS Datei anlegen");
}

TEST_F(OrderDialogs, RemoveTakesTheTickedPointsAfterItsQuestion) {
  COrderExportDlg dialog;
  dialog.Handle(toolkit::Opened{});
  dialog.Handle(RowTicked{kList, 1, true});
  desktop_.answers = {toolkit::kAnswerCancel};
  dialog.Handle(Pressed{kRemove});
  EXPECT_EQ(Po("3"), 1);
  EXPECT_TRUE(dialog.IsOpen());
  dialog.Handle(Pressed{kRemove});
  EXPECT_FALSE(dialog.IsOpen());
  EXPECT_EQ(Po("3"), 0);
  EXPECT_EQ(Po("5"), 1);
}

TEST_F(OrderDialogs, ManyPointsReadLikeEachAlone) {
  const std::vector<std::string> numbers = {"5", "nobody", "1", "5", "4"};
  std::vector<PointRecord> many(numbers.size());
  point_read_all(numbers, [&](std::size_t i, const PointRecord& record) { many[i] = record; });
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    PointRecord alone{};
    point_read(numbers[i].c_str(), &alone);
    EXPECT_STREQ(many[i].pkn, alone.pkn) << numbers[i];
    EXPECT_EQ(many[i].po + many[i].east, alone.po + alone.east) << numbers[i];
  }
}

TEST_F(OrderDialogs, SearchFindsWholeIdentifiersOnly) {
  double east = 0, north = 0;
  CGidSearchDlg dialog(&east, &north);
  dialog.Handle(toolkit::Opened{});
  EXPECT_EQ(dialog.Handle(Pressed{toolkit::kOk}), toolkit::Answer::kDisabled);
  const std::pair<const char*, std::string> kSearches[] = {
      {"G1", "Punktnummer: 1\r\n, 650001.500000,5651002.000000"}, {"G", "Nicht gefunden"}, {"G 1", "Nicht gefunden"}};
  for (const auto& [gid, result] : kSearches) {
    dialog.Handle(Typed{7068, gid});
    dialog.Handle(Pressed{7067});
    EXPECT_EQ(Text(dialog, 7069), result);
    EXPECT_EQ(dialog.Find(toolkit::kOk)->enabled, result != "Nicht gefunden");
  }
  dialog.Handle(toolkit::Closed{});
  EXPECT_FALSE(dialog.confirmed());
}

TEST_F(OrderDialogs, AdoptionOffersWhatTheImportLeft) {
  const struct {
    const char* values;
    std::string type;
    const char* gid;
    std::string rows;
    std::string taken;  // oa, gmlid, pkn, abm, bza, kst with all rows ticked
  } kCases[] = {
      {" 17,1,9,1,", "Grenzpunkt", "G",
       "Objektart:                Grenzpunkt\nGID(Objekt ändern oder löschen) :       G\nPunktkennung:       17\n"
       "Abmarkung Marke: Stein\nBem.zur Abmarkung9\nKoordinatenstatus:  Stein\n"_ansi,
       "1 G 17 1 9 1"},
      {"17,1,1,1", "  AX_Grenzpunkt   ", "", "Objektart:                Grenzpunkt\n", "1   7 7 7"},
      {",0,-1,x,", "Grenzpunkt", "", "Objektart:                Grenzpunkt\n", "1   7 7 7"},
      {",1,1,1,", "AX_Aufnahmepunkt", "", "Objektart:                Aufnahmepunkt\nAbmarkung Marke: Stein\n",
       "0   1 7 7"},
      {",1,1,1,", " AX_Haus ", "", "Objektart:                AX_Haus\n", "7   7 7 7"},
  };
  for (const auto& row : kCases) {
    for (const bool ticked : {false, true}) {
      PointRecord record{};
      record.oa = record.abm = record.bza = record.kst = 7;
      CAdoptDataDlg dialog(row.values, row.type.c_str(), row.gid, &record);
      dialog.Handle(toolkit::Opened{});
      EXPECT_EQ(Rows(dialog), row.rows);
      EXPECT_EQ(dialog.Find(7070)->visible, *row.gid != '\0');
      if (ticked) dialog.Handle(Pressed{kAllOn});
      dialog.Handle(Pressed{toolkit::kOk});
      EXPECT_EQ(std::to_string(record.oa) + " " + record.gmlid + " " + record.pkn + " " + std::to_string(record.abm) +
                    " " + std::to_string(record.bza) + " " + std::to_string(record.kst),
                ticked ? row.taken : "7   7 7 7")
          << row.values;
      EXPECT_EQ(record.aktion, kAktionReplace);
      EXPECT_STREQ(record.obgid, "");
    }
  }
}

TEST_F(OrderDialogs, AdoptionFromTheOriginalFileKeepsWhatThatDoesNotSay) {
  get_catalog_store()->orig_xml =
      folder_.Write("o.xml",
                    "<wfs:member>\n<AX_Grenzpunkt gml:id=\"O\">\n<abmarkung_Marke>1</x>\n</wfs:member>\n<wfs:member>\n"
                    "<AX_PunktortAG gml:id=\"G\">\n<istTeilVon xlink:href=\"urn:adv:oid:O\"/>\n</wfs:member>\n");
  PointRecord record{};
  put(record.pkn, "alt");
  put(record.wepo, "alt");
  put(record.antragn, "alt");
  record.dat = record.art = record.bundesland = 16;
  CAdoptDataDlg dialog("17,1,1,1,", "", "G", &record);
  dialog.Handle(toolkit::Opened{});
  dialog.Handle(Pressed{7070});
  EXPECT_FALSE(dialog.IsOpen());
  EXPECT_EQ(dialog.result(), toolkit::kOk);
  EXPECT_EQ(std::string(record.pkn) + record.wepo + record.antragn + record.obgid + record.gmlid, "altaltaltOG");
  EXPECT_EQ(record.dat + record.art + record.bundesland, 48);
  EXPECT_EQ(record.oa * 100 + record.po * 10 + record.abm + record.aktion, 132);
  EXPECT_EQ(record.kst + record.vtw + record.lzv, -4);
}

}  // namespace
}  // namespace pktaus
