// The catalogues and the settings, through the store that loads them.
#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog_store.h"
#include "catalog/number.h"
#include "entry/host/desktop.h"
#include "store/object_types.h"
#include "store/point_table.h"
#include "tests/support/open_project.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

using namespace text::literals;

std::string Rows() {
  std::string rows;
  for (const auto& row : object_types) rows += std::string(rows.empty() ? "" : " ") + row;
  return rows;
}

/// "code=text " for each entry, from the head on; "-" for no list.
std::string Show(const CatalogTable* table) {
  std::string all = table == nullptr ? "-" : "";
  for (const auto* entry = table ? table->entries : nullptr; entry != nullptr; entry = entry->next) {
    all += std::to_string(entry->code) + "=" + entry->text + " ";
  }
  return all;
}

/// The lists of an object type, and behind them those of its position entry.
std::string ShowLists(const CatalogObject& type) {
  const CatalogPunktort ort = type.ort != nullptr ? *type.ort : CatalogPunktort{};
  std::string all;
  for (const auto* table :
       {type.abmarkung_Marke, type.vermarkung_Marke, type.bemerkungZurAbmarkung, type.art, type.zustaendige_stelle,
        ort.koordinatenstatus, ort.hinweise, ort.herkunft, ort.genauigkeitsstufe, ort.vertrauenswuerdigkeit}) {
    all += Show(table);
  }
  return all;
}

/// All numbers of the defaults, `bundesland` first.
std::string Numbers(const PointRecord& r) {
  std::string all;
  for (const std::int32_t number :
       {r.bundesland, r.oa, r.abm, r.bza, r.art, r.zst, r.kst, r.dat, r.her, r.hin, r.gst, r.vtw, r.lzv}) {
    all += std::to_string(number) + " ";
  }
  return all;
}

/// A store with a plug-in folder of its own.
class CatalogStore : public testing::Test {
 protected:
  CatalogStore() { SetPluginFolder(folder_.path()); }
  ~CatalogStore() override { SetPluginFolder(""); }

  bool Load(const std::string& catalog) {
    folder_.Write("16.ini", catalog);
    return store_.LoadCatalog(16);
  }
  /// What the settings hold behind a save over `before`.
  std::string SavedOver(const std::string& before) const {
    const std::string path = folder_.Write("pktausout.ini", before);
    EXPECT_TRUE(store_.SaveSettings());
    return support::BytesOf(path);
  }

  support::TempFolder folder_;
  support::ScriptedDesktop desktop_;
  CCatalogStore store_;
};

TEST_F(CatalogStore, NamesTheTemplateAndFillsTheRows) {
  EXPECT_TRUE(Load("[global]\r\nheader = 'h'\r\n[Other]\r\nHEADER=x\r\n[GLOBAL]\n\"HEADER\" = c\n"));
  EXPECT_EQ(Rows(), "leer leer leer leer leer leer leer");
  EXPECT_TRUE(Load("[T_a]\n[AX_PunktortTA]\n[AX_A]\n[AX_B]\n[AX_punktortTA]\n[ax_C]\n"));
  for (const bool there : {true, false}) {
    EXPECT_EQ(Rows(), "punktortTA B A leer leer leer leer") << "stored numbers keep their meaning over a failure";
    EXPECT_EQ(store_.header_name + std::to_string(store_.catalog_number), "h16");
    EXPECT_EQ(FirstCatalogObject() != nullptr, there);
    EXPECT_EQ(FindValueList("a") != nullptr, there);
    EXPECT_FALSE(store_.LoadCatalog(7));
  }
}

TEST_F(CatalogStore, FillsAValueListFromItsQuotedKeys) {
  EXPECT_TRUE(
      Load("[T_x]\r\n\"1\" = \"eins\"\r\n'-2' = 'zwei \"2\"'\r\n3 = drei\r\n \"4\" = vier\r\n\"\" = leer\r\n"
           "\"0100\"=hundert # c\r\n\"1\" = noch \"eins\"\r\n\"Stein\" = \"a # b\"\r\n\"7\" = " +
           std::string(200, 't')));
  EXPECT_EQ(Show(FindValueList("x")),
            "7=" + std::string(127, 't') + " 0=a # b 1=noch \"eins\" 100=hundert 0=leer -2=zwei \"2\" 1=eins ");
}

TEST_F(CatalogStore, ReadsEveryKeyFromWhatStandsAboveAndNearest) {
  std::string lists;
  for (const char name : std::string("abcdex")) lists += std::string("[T_") + name + "]\n\"1\"=" + name + "\n";
  const std::string name(70, 'n');
  EXPECT_TRUE(Load(lists +
                   "[AX_Early]\nart=x\nort=PunktortTA\n"
                   "[AX_PunktortTA]\nkoordinatenstatus=a\nHinweise=T_b\nHERKUNFT=c\ngenauigkeitsstufe=d\n"
                   "vertrauenswuerdigkeit=e\nueberpruefungsdatum=\nlagezuverlaessigkeit=nein\n"
                   "[AX_Full]\nabmarkung_Marke=a\nvermarkung_marke=T_b\nbemerkungZurAbmarkung=c\nart=d\n"
                   "zustaendige_stelle=e\nort=AX_PunktortTA\npunktkennung=32EEE\n"
                   "[T_x]\n\"1\"=y\n[AX_PunktortTA]\n'herkunft'=c\n[AX_Late]\nart=x\nort=PunktortTA\npunktkennung=\n"
                   "[T_T_x]\n\"1\"=z\n[AX_Later]\nart=T_x\n[AX_" +
                   name + "]\nart=A\nort=Bare\npunktkennung=" + name));
  std::string seen;
  for (const auto* type = FirstCatalogObject(); type != nullptr; type = type->next) {
    seen += std::string(type->name) + ":" + ShowLists(*type);
    if (type->ort != nullptr && type->ort->ueberpruefungsdatum && type->ort->lagezuverlaessigkeit) seen += "!";
    seen += (type->has_punktkennung ? " " : "") + std::string(type->punktkennung) + "\n";
  }
  EXPECT_EQ(seen, name.substr(7) + ":---------- " + name.substr(7) +
                      "\nLater:---1=z ------\nLate:---1=y ------ \n"
                      "Full:1=a 1=b 1=c 1=d 1=e 1=a 1=b 1=c 1=d 1=e ! 32EEE\nEarly:---1=x ------\n");
}

TEST_F(CatalogStore, NamesSurplusObjectTypesOnce) {
  std::string types;
  for (int i = 1; i <= 30; ++i) types += "[AX_a" + std::to_string(i) + "]\n";
  for (int time = 0; time < 2; ++time) EXPECT_TRUE(Load(types));
  EXPECT_EQ(Rows(), "a30 a29 a28 a27 a26 a25 a24");
  EXPECT_EQ(FindCatalogObject("a24")->next, nullptr);
  ASSERT_EQ(desktop_.boxes.size(), 1U);
  EXPECT_EQ(desktop_.boxes[0].text,
            "Der Katalog 16.ini hat mehr als 7 Objektarten.\n"
            "Nicht übernommen: a1, a2, a3, a4, a5, a6, a7, a8, a9, a10 und 13 weitere"_ansi);
}

constexpr char kThreeTypes[] = "[AX_Zwei]\n[AX_Eins]\n[AX_Null]\n";
constexpr char kFilled[] =
    "[EINSTELLUNGEN]\r\nBUNDESLAND = \"16\"\r\nORGANISATION = \"B\xFCro\"\r\nPUNKTTYPE = \"Zwei\"\r\n"
    "ANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\nORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\n"
    "ABM = \"100\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\nKST = \"104\"\r\nDAT = \"105\"\r\n"
    "HER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\nLZV = \"-2\"\r\n";

TEST_F(CatalogStore, ReadsSettingsAndWritesThemBack) {
  put(store_.defaults.pkn, "x");
  store_.defaults.aktion = kAktionDelete;
  folder_.Write("16.ini", kThreeTypes);
  folder_.Write("pktausout.ini", kFilled);
  store_.LoadSettings();
  const PointRecord& read = store_.defaults;
  EXPECT_EQ(Numbers(read), "16 2 100 101 102 103 104 105 106 107 108 109 -2 ");
  EXPECT_EQ(std::string(read.antragn) + read.auftrag + read.pkn, "An 1Au 1");
  EXPECT_EQ(read.aktion, kAktionNew);
  EXPECT_EQ(store_.organisation + store_.orig_xml + store_.point_xml_folder, "B\xFCro/a b/o.xml/r");
  for (const char* before : {"", kFilled}) EXPECT_EQ(SavedOver(before), kFilled);

  // The file's own order, quotes and strangers stay.
  store_.organisation = "q";
  store_.defaults.oa = 7;
  EXPECT_EQ(SavedOver("[A]\nk=1\n[EINSTELLUNGEN]\nlzv=0\nfremd='x'\nabm='5'\norganisation=\"q\"q\"\n[Z]\n"),
            "[A]\r\nK = 1\r\n[EINSTELLUNGEN]\r\nLZV = -2\r\nFREMD = 'x'\r\nABM = '100'\r\nORGANISATION = \"q\"\r\n"
            "BUNDESLAND = \"16\"\r\nPUNKTTYPE = \"\"\r\nANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\n"
            "ORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\n"
            "KST = \"104\"\r\nDAT = \"105\"\r\nHER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\n"
            "[Z]\r\n");
}

TEST_F(CatalogStore, TakesSettingsAsFarAsTheyGo) {
  const std::string zeros = " 0 0 0 0 0 0 0 0 0 0 0 ";
  const std::pair<std::string, std::string> kFiles[] = {
      {"[Einstellungen]\nABM=1\n", "13 0 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -2 "},
      {"[EINSTELLUNGEN]\n", "13 0" + zeros},
      {"[EINSTELLUNGEN]\nbundesland=16\nabm='7'\nlzv = \"-2\"\n", "16 0 7 0 0 0 0 0 0 0 0 0 -2 "},
      {"[EINSTELLUNGEN]\nPUNKTTYPE=Eins\nBUNDESLAND=16\n", "16 1" + zeros},
      {"[EINSTELLUNGEN]\nBUNDESLAND=NRW\nPUNKTTYPE=Grenzpunkt\nABM=1\nABM=2\nKST=x\n[EINSTELLUNGEN]\nBZA=3\n",
       "0 0 1 0 0 0 0 0 0 0 0 0 0 "},
  };
  folder_.Write("16.ini", kThreeTypes);
  for (const auto& [file, numbers] : kFiles) {
    folder_.Write("pktausout.ini", file);
    CCatalogStore store;
    store.LoadSettings();
    EXPECT_EQ(Numbers(store.defaults), numbers) << file;
  }
}

TEST_F(CatalogStore, CollectsOrdersOfPointsWithBothNumbersInTheReverseOfTheTable) {
  support::TableFile table(support::PointColumns());
  const char* const kPoints[][3] = {{"1", "A", "x"}, {"2", "a", "x"}, {"3", "A", ""}, {"4", "", "x"}, {"1", "A", "y"}};
  for (const auto& [number, auftrag, antragn] : kPoints) {
    table.Add({{"PT_NO", number}, {"NE_AUFTRAG", auftrag}, {"NE_ANTRAGN", antragn}, {"EAST", "1.5"}, {"NORTH", "2.5"}});
  }
  const support::OpenProject project(std::move(table));
  columns_bind();
  store_.orders_collect();
  store_.orders_clear();
  store_.orders_collect();
  std::string all;
  for (const OrderEntry* order = store_.orders; order != nullptr; order = order->next) {
    for (const OrderPoint* point = order->points; point != nullptr; point = point->next) {
      all += std::string(order->auftrag) + point->pt_no + point->antragn + " ";
    }
  }
  EXPECT_EQ(all, "a2x A1y A1x ");
  EXPECT_EQ(store_.orders->points->east - store_.orders->points->north, -1);
}

// What ships, as the product reads it.
TEST_F(CatalogStore, HasAllObjectTypesWithTheirAttributesInEveryState) {
  SetPluginFolder(PKTAUS_SOURCE_DIR "/data");
  for (int state = 1; state <= 16; ++state) {
    ASSERT_TRUE(store_.LoadCatalog(state));
    EXPECT_EQ(Rows(),
              "Aufnahmepunkt BesondererBauwerkspunkt BesondererGebaeudepunkt BesondererTopographischerPunkt "
              "Grenzpunkt Sicherungspunkt SonstigerVermessungspunkt")
        << "stored numbers keep their meaning";
    std::string lists;
    for (const auto* type = FirstCatalogObject(); type != nullptr; type = type->next) lists += ShowLists(*type);
    // Marks of four types, causes of three, and of each the origins, precisions, states, degrees of trust and hints.
    const int values = 4 * 250 + 3 + 4 + 4 + 7 * (81 + 15 + 6 + 4 + (state == 16 ? 4 : 0));
    EXPECT_EQ(std::count(lists.begin(), lists.end(), '='), values) << state;
  }
}

TEST(Number, IsTheIntegerAtTheStartOfAText) {
  std::string seen;
  for (const char* text : {" \t\r\n\v\f-7", "+5", "12 Stein", "3.9", "0x10", "- 1", "+-1", "\xA0 1",
                           "99999999999999999999", "-99999999999999999999"}) {
    seen += std::to_string(ReadNumber(text)) + " ";
  }
  EXPECT_EQ(seen, "-7 5 12 3 0 0 0 0 2147483647 -2147483648 ");
}

}  // namespace
}  // namespace pktaus
