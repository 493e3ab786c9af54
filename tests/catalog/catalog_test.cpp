#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "catalog/catalog_store.h"
#include "catalog/number.h"
#include "entry/host/desktop.h"
#include "store/object_types.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

using namespace std::literals;
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

std::string Names(std::initializer_list<const CatalogTable*> tables) {
  std::string all;
  for (const CatalogTable* table : tables) all += table != nullptr ? table->name : "-";
  return all;
}

/// Loads catalogue files as the store does, from a folder of their own.
class CatalogFile : public testing::Test {
 protected:
  CatalogFile() { SetPluginFolder(folder_.path()); }
  ~CatalogFile() override { SetPluginFolder(""); }

  bool Load(const std::string& text, int number = 16) {
    folder_.Write(number == 16 ? "16.ini" : "05.ini", text);
    return store_.LoadCatalog(number);
  }

  support::TempFolder folder_;
  support::ScriptedDesktop desktop_;
  CCatalogStore store_;
};

TEST_F(CatalogFile, NamesTheTemplateAndFillsTheRows) {
  const std::pair<const char*, const char*> kFiles[] = {
      {"[global]\r\nheader = '16Th.XML'\r\n[Other]\r\nHEADER=x\r\n", "16Th.XML"},
      {"[GLOBAL]\n[x]\n", "16Th.XML"},
      {"[GLOBAL]\nHEADER=a\n[Global]\nHEADER=b\n[GLOBAL]\n\"HEADER\" = c\n", "b"}};
  for (const auto& [text, header] : kFiles) {
    EXPECT_TRUE(Load(text));
    EXPECT_EQ(store_.header_name, header);
    EXPECT_EQ(Rows(), "leer leer leer leer leer leer leer");
  }
  EXPECT_TRUE(Load("[GLOBAL]\nHEADER=h\n[T_a]\n[AX_PunktortTA]\n[AX_A]\n[AX_B]\n[AX_punktortTA]\n[ax_C]\n"));
  EXPECT_EQ(Rows(), "punktortTA B A leer leer leer leer");
  EXPECT_NE(FindCatalogPunktort("PunktortTA"), nullptr);
  EXPECT_FALSE(store_.LoadCatalog(7));
  EXPECT_EQ(Rows(), "punktortTA B A leer leer leer leer") << "stored numbers keep their meaning over a failure";
  EXPECT_EQ(store_.header_name, "h");
  EXPECT_EQ(store_.catalog_number, 16);
  EXPECT_EQ(FirstCatalogObject(), nullptr);
  EXPECT_EQ(FindValueList("a"), nullptr);
  EXPECT_EQ(FindCatalogPunktort("PunktortTA"), nullptr);
  EXPECT_TRUE(desktop_.boxes.empty()) << "who asked for the catalogue tells";
}

TEST_F(CatalogFile, FillsAValueListFromItsQuotedKeys) {
  EXPECT_TRUE(
      Load("[T_x]\r\n\"1\" = \"eins\"\r\n'-2' = 'zwei \"2\"'\r\n3 = drei\r\n \"4\" = vier\r\n\"\" = leer\r\n"
           "\"0100\"=hundert # c\r\n\"1\" = noch \"eins\"\r\n\"Stein\" = \"a # b\"\r\n\"99999999999\" = viel\r\n"
           "[T_leer]\r\n1 = eins\r\n"));
  EXPECT_EQ(Show(FindValueList("x")),
            "2147483647=viel 0=a # b 1=noch \"eins\" 100=hundert 0=leer -2=zwei \"2\" 1=eins ");
  EXPECT_EQ(Show(FindValueList("leer")), "");
}

TEST_F(CatalogFile, ReadsEveryKeyFromWhatStandsAboveAndNearest) {
  EXPECT_TRUE(
      Load("[T_a]\n[T_b]\n[T_c]\n[T_d]\n[T_e]\n[AX_Early]\nart=x\nort=PunktortTA\n[T_x]\n\"1\"=a\n"
           "[AX_PunktortTA]\nkoordinatenstatus=a\nHinweise=T_b\nHERKUNFT=c\ngenauigkeitsstufe=d\n"
           "vertrauenswuerdigkeit=e\nueberpruefungsdatum=\nlagezuverlaessigkeit=nein\n"
           "[AX_Full]\nabmarkung_Marke=a\nvermarkung_marke=T_b\nbemerkungZurAbmarkung=c\nart=d\n"
           "zustaendige_stelle=e\nort=AX_PunktortTA\npunktkennung=32EEE\n[AX_Mid]\nart=x\n[T_x]\n\"2\"=b\n"
           "[AX_PunktortTA]\n'herkunft'=c\n[AX_Late]\nart=x\nort=PunktortTA\npunktkennung=\n[T_T_x]\n\"3\"=c\n"
           "[AX_Later]\nart=T_x\n[AX_Bare]\nart=A\nort=Bare\n"));
  std::string seen;
  for (const auto* type = FirstCatalogObject(); type != nullptr; type = type->next) {
    seen += std::string(type->name) + " " + Show(type->art) + (type->has_punktkennung ? type->punktkennung : "-");
    if (const CatalogPunktort* ort = type->ort) {
      seen += " " + Names({ort->koordinatenstatus, ort->hinweise, ort->herkunft, ort->genauigkeitsstufe,
                           ort->vertrauenswuerdigkeit});
      if (ort->ueberpruefungsdatum && ort->lagezuverlaessigkeit) seen += "!";
    }
    seen += "\n";
  }
  EXPECT_EQ(seen, "Bare --\nLater 3=c -\nLate 2=b  -----\nMid 1=a -\nFull 32EEE abcde!\nEarly --\n");
  const CatalogObject* full = FindCatalogObject("Full");
  EXPECT_EQ(Names({full->abmarkung_Marke, full->vermarkung_Marke, full->bemerkungZurAbmarkung, full->art,
                   full->zustaendige_stelle}),
            "abcde");
  EXPECT_EQ(FindValueList("T_T_x"), FindValueList("T_x"));
  EXPECT_EQ(FindValueList(""), nullptr);
}

TEST_F(CatalogFile, CutsWhatDoesNotFit) {
  const support::OverflowLog log;
  const std::string name(70, 'n');
  EXPECT_TRUE(Load("[T_" + name + "]\n\"1\"=" + std::string(200, 't') + "\n[AX_Punktort" + name + "]\n[AX_" + name +
                   "]\npunktkennung=" + std::string(200, 'x') + "\n"));
  EXPECT_EQ(Show(FindValueList(name.substr(7))), "1=" + std::string(127, 't') + " ");
  EXPECT_EQ(FindValueList(name), nullptr);
  EXPECT_NE(FindCatalogPunktort("Punktort" + name.substr(15)), nullptr);
  EXPECT_EQ(FirstCatalogObject()->name, name.substr(7));
  EXPECT_EQ(FirstCatalogObject()->punktkennung, std::string(63, 'x'));
  EXPECT_EQ(object_types[0], name.substr(0, 39));
  EXPECT_EQ(log.texts().size(), 1U) << "the row alone is reported";
}

TEST_F(CatalogFile, NamesSurplusObjectTypesOnce) {
  std::string nine, many;
  for (int i = 1; i <= 9; ++i) nine += "[AX_a" + std::to_string(i) + "]\n";
  for (int i = 1; i <= 30; ++i) many += "[AX_n" + std::to_string(i) + "]\n";
  for (int time = 0; time < 2; ++time) EXPECT_TRUE(Load(nine));
  EXPECT_EQ(Rows(), "a9 a8 a7 a6 a5 a4 a3");
  EXPECT_EQ(FindCatalogObject("a3")->next, nullptr);
  EXPECT_EQ(FindCatalogObject("a2"), nullptr);
  EXPECT_TRUE(Load(many, 5));
  const std::string head = "hat mehr als 7 Objektarten.\nNicht übernommen: "_ansi;
  const std::vector<support::ScriptedDesktop::Box> expected = {
      {"Der Katalog 16.ini " + head + "a1, a2", "Hinweis", 0},
      {"Der Katalog 05.ini " + head + "n1, n2, n3, n4, n5, n6, n7, n8, n9, n10 und 13 weitere", "Hinweis", 0}};
  EXPECT_EQ(desktop_.boxes, expected);
}

TEST_F(CatalogFile, OfAnyContentLoads) {
  std::string lists;
  for (int i = 0; i < 20000; ++i) {
    const std::string number = std::to_string(i);
    lists += "[T_" + number + "]\n\"1\"=a\n[AX_o" + number + "]\nart=" + number + "\n";
  }
  for (const std::string& text : {lists, std::string(5000, '\0'), "[AX_]\n[T_]\n[]\n[GLOBAL"s}) EXPECT_TRUE(Load(text));
  const std::string whole = "[T_a]\n\"1\"=a\n[AX_PunktortTA]\nhinweise=a\n[AX_o]\nart=a\nort=PunktortTA\n";
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) EXPECT_TRUE(Load(whole.substr(0, cut))) << cut;
  EXPECT_EQ(FindCatalogObject("o")->ort->hinweise, FindCatalogObject("o")->art);
}

// What ships, as the product reads it.
TEST_F(CatalogFile, OfEveryStateHasAllObjectTypesWithTheirAttributes) {
  SetPluginFolder(PKTAUS_SOURCE_DIR "/data");
  const auto size = [](const CatalogTable* table) {
    const std::string shown = Show(table);
    return std::count(shown.begin(), shown.end(), '=');
  };
  for (int state = 1; state <= 16; ++state) {
    ASSERT_TRUE(store_.LoadCatalog(state));
    EXPECT_EQ(Rows(),
              "Aufnahmepunkt BesondererBauwerkspunkt BesondererGebaeudepunkt BesondererTopographischerPunkt "
              "Grenzpunkt Sicherungspunkt SonstigerVermessungspunkt")
        << "stored numbers keep their meaning";
    std::string seen;
    for (const auto* type = FirstCatalogObject(); type != nullptr; type = type->next) {
      ASSERT_NE(type->ort, nullptr) << type->name;
      const CatalogPunktort& ort = *type->ort;
      seen += ort.name + 8;
      for (const auto* table :
           {type->abmarkung_Marke, type->vermarkung_Marke, type->bemerkungZurAbmarkung, type->art,
            ort.koordinatenstatus, ort.vertrauenswuerdigkeit, ort.herkunft, ort.genauigkeitsstufe}) {
        seen += " " + std::to_string(size(table));
      }
      seen += "|";
      EXPECT_EQ(size(ort.hinweise), state == 16 ? 4 : 0);
      EXPECT_EQ(Show(ort.genauigkeitsstufe).find(" 900="), std::string::npos) << "0900 would be written as 900";
      EXPECT_TRUE(ort.ueberpruefungsdatum && ort.lagezuverlaessigkeit);
    }
    EXPECT_EQ(seen,
              "AU 0 250 0 0 6 4 81 15|AG 0 0 0 3 6 4 81 15|AG 0 0 0 4 6 4 81 15|AU 0 0 0 0 6 4 81 15|"
              "TA 250 0 4 0 6 4 81 15|AU 0 250 0 0 6 4 81 15|AU 0 250 0 0 6 4 81 15|")
        << state;
  }
  const std::string mark = "Gravur \"TP\" und \"Dreieck\", Bezugspunkt Platte 30x30-35x35 cm ";
  EXPECT_NE(Show(FindValueList("Marke")).find(mark), std::string::npos);
  EXPECT_NE(Show(FindValueList("Datenerhebung")).find("1 zu 1000) "), std::string::npos) << "not cut";
}

TEST(Number, IsTheIntegerAtTheStartOfAText) {
  std::string seen;
  for (const std::string& text : {"0100"s, " \t\r\n\v\f7"s, "-2"s, "+5"s, "12 Stein"s, "3.9"s, ""s, "Stein"s, "-"s,
                                  "- 1"s, "+-1"s, "0x10"s, "\xA0 1"s}) {
    seen += std::to_string(ReadNumber(text)) + " ";
  }
  EXPECT_EQ(seen, "100 7 -2 5 12 3 0 0 0 0 0 0 0 ");
  for (const std::string& text : {"2147483647"s, "2147483648"s, "4294967297"s, std::string(1000000, '9')}) {
    EXPECT_EQ(ReadNumber(text), 2147483647);
    EXPECT_EQ(ReadNumber("-" + text), text.back() == '7' && text[0] == '2' ? -2147483647 : -2147483648);
  }
}

}  // namespace
}  // namespace pktaus
