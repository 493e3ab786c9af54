#include "catalog/catalog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/text.h"
#include "catalog/catalog_store.h"
#include "entry/host/desktop.h"
#include "store/object_types.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

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
  if (table == nullptr) return "-";
  std::string all;
  for (const CatalogEntry* entry = table->entries; entry != nullptr; entry = entry->next) {
    all += std::to_string(entry->code) + "=" + entry->text + " ";
  }
  return all;
}

/// Loads catalogue files as the store does, from a folder of their own.
class CatalogFile : public testing::Test {
 protected:
  CatalogFile() { SetPluginFolder(folder_.path()); }
  ~CatalogFile() override { SetPluginFolder(""); }
  CatalogFile(const CatalogFile&) = delete;
  CatalogFile& operator=(const CatalogFile&) = delete;

  bool Load(const std::string& text, int number = 16) {
    folder_.Write(number == 16 ? "16.ini" : "05.ini", text);
    return store_.LoadCatalog(number);
  }

  support::TempFolder folder_;
  support::ScriptedDesktop desktop_;
  CCatalogStore store_;
};

TEST_F(CatalogFile, WithoutObjectTypesLeavesAllRowsOver) {
  store_.header_name = "old";
  EXPECT_TRUE(Load("[global]\r\nheader = '16Th.XML'\r\n[Other]\r\nHEADER=x\r\n"));
  EXPECT_EQ(store_.header_name, "16Th.XML");
  EXPECT_EQ(store_.catalog_number, 16);
  EXPECT_EQ(Rows(), "leer leer leer leer leer leer leer");
  EXPECT_EQ(FirstCatalogObject(), nullptr);

  EXPECT_TRUE(Load("[GLOBAL]\n[x]\n", 5));
  EXPECT_EQ(store_.header_name, "16Th.XML") << "no key, no change";
  EXPECT_EQ(store_.catalog_number, 5);
  EXPECT_TRUE(Load("[GLOBAL]\nHEADER=a\n[Global]\nHEADER=b\n[GLOBAL]\n\"HEADER\" = c\n"));
  EXPECT_EQ(store_.header_name, "b") << "the last plain key counts";
}

TEST_F(CatalogFile, GivesTheRowsInReverseAndKeepsThemOverAFailure) {
  EXPECT_TRUE(Load("[GLOBAL]\nHEADER=h\n[T_a]\n[AX_PunktortTA]\n[AX_A]\n[AX_B]\n[AX_punktortTA]\n[ax_C]\n"));
  EXPECT_EQ(Rows(), "punktortTA B A leer leer leer leer");
  EXPECT_STREQ(FirstCatalogObject()->name, "punktortTA");
  EXPECT_NE(FindCatalogPunktort("PunktortTA"), nullptr);

  EXPECT_FALSE(store_.LoadCatalog(7));
  EXPECT_EQ(Rows(), "punktortTA B A leer leer leer leer");
  EXPECT_EQ(store_.catalog_number, 16);
  EXPECT_EQ(store_.header_name, "h");
  EXPECT_EQ(FirstCatalogObject(), nullptr);
  EXPECT_EQ(FindValueList("a"), nullptr);
  EXPECT_EQ(FindCatalogPunktort("PunktortTA"), nullptr);
  EXPECT_EQ(FindCatalogObject("A"), nullptr);
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

std::string Names(std::initializer_list<const CatalogTable*> tables) {
  std::string all;
  for (const CatalogTable* table : tables) all += table != nullptr ? table->name : "-";
  return all;
}

TEST_F(CatalogFile, ReadsEveryKeyOfItsRecords) {
  EXPECT_TRUE(
      Load("[T_a]\n[T_b]\n[T_c]\n[T_d]\n[T_e]\n"
           "[AX_PunktortTA]\nkoordinatenstatus=a\nHinweise=T_b\nHERKUNFT=c\ngenauigkeitsstufe=d\n"
           "vertrauenswuerdigkeit=e\nueberpruefungsdatum=\nlagezuverlaessigkeit=nein\n"
           "[AX_PunktortXY]\n'herkunft'=c\n"
           "[AX_Full]\nabmarkung_Marke=a\nvermarkung_marke=T_b\nbemerkungZurAbmarkung=c\nart=d\n"
           "zustaendige_stelle=e\nort=AX_PunktortTA\npunktkennung=32EEE\n"
           "[AX_Pattern]\npunktkennung=\nort=PunktortXY\n[AX_Bare]\nart=A\nort=Bare\n"));
  const CatalogPunktort* ta = FindCatalogPunktort("PunktortTA");
  ASSERT_NE(ta, nullptr);
  EXPECT_EQ(
      Names({ta->koordinatenstatus, ta->hinweise, ta->herkunft, ta->genauigkeitsstufe, ta->vertrauenswuerdigkeit}),
      "abcde");
  EXPECT_TRUE(ta->ueberpruefungsdatum && ta->lagezuverlaessigkeit);
  const CatalogObject* full = FindCatalogObject("Full");
  ASSERT_NE(full, nullptr);
  EXPECT_EQ(Names({full->abmarkung_Marke, full->vermarkung_Marke, full->bemerkungZurAbmarkung, full->art,
                   full->zustaendige_stelle}),
            "abcde");
  EXPECT_EQ(full->ort, ta);
  EXPECT_STREQ(full->punktkennung, "32EEE");
  const CatalogObject* pattern = FindCatalogObject("Pattern");
  EXPECT_TRUE(full->has_punktkennung && pattern->has_punktkennung);
  EXPECT_EQ(pattern->ort->herkunft, nullptr) << "a quoted key is none of the section's";
  EXPECT_FALSE(pattern->ort->ueberpruefungsdatum || pattern->ort->lagezuverlaessigkeit);
  const CatalogObject* bare = FindCatalogObject("Bare");
  EXPECT_EQ(bare->art, nullptr) << "names of lists differ in case";
  EXPECT_EQ(bare->ort, nullptr);
  EXPECT_FALSE(bare->has_punktkennung);
}

TEST_F(CatalogFile, ReachesOnlyWhatStandsAboveAndTheNearestOfOneName) {
  EXPECT_TRUE(Load(
      "[AX_Early]\nart=x\nort=PunktortTA\n[T_x]\n\"1\"=a\n[AX_PunktortTA]\nherkunft=x\n[AX_Mid]\nart=x\n"
      "ort=PunktortTA\n[T_x]\n\"2\"=b\n[AX_PunktortTA]\n[T_T_x]\n\"3\"=c\n[AX_Late]\nart=x\n[AX_Later]\nart=T_x\n"));
  const struct {
    const char* object;
    const char* art;
  } kCases[] = {{"Early", "-"}, {"Mid", "1=a "}, {"Late", "2=b "}, {"Later", "3=c "}};
  for (const auto& row : kCases) EXPECT_EQ(Show(FindCatalogObject(row.object)->art), row.art) << row.object;
  EXPECT_EQ(FindCatalogObject("Early")->ort, nullptr);
  EXPECT_EQ(Show(FindCatalogObject("Mid")->ort->herkunft), "1=a ");
  EXPECT_EQ(FindCatalogPunktort("AX_PunktortTA")->herkunft, nullptr) << "the later one";
  EXPECT_EQ(FindValueList("T_T_x"), FindValueList("T_x"));
  EXPECT_EQ(FindValueList("y"), nullptr);
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
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i"}) nine += std::string("[AX_") + name + "]\n";
  for (int i = 1; i <= 30; ++i) many += "[AX_n" + std::to_string(i) + "]\n";
  const std::string head = "hat mehr als 7 Objektarten.\nNicht übernommen: "_ansi;

  EXPECT_TRUE(Load(nine));
  EXPECT_EQ(Rows(), "i h g f e d c");
  EXPECT_NE(FindCatalogObject("c"), nullptr);
  EXPECT_EQ(FindCatalogObject("c")->next, nullptr);
  EXPECT_EQ(FindCatalogObject("b"), nullptr);
  EXPECT_TRUE(Load(nine));
  EXPECT_TRUE(Load(many, 5));
  const std::vector<support::ScriptedDesktop::Box> expected = {
      {"Der Katalog 16.ini " + head + "a, b", "Hinweis", 0},
      {"Der Katalog 05.ini " + head + "n1, n2, n3, n4, n5, n6, n7, n8, n9, n10 und 13 weitere", "Hinweis", 0}};
  EXPECT_EQ(desktop_.boxes, expected);
}

TEST_F(CatalogFile, OfAnyContentLoads) {
  std::string lists, values = "[T_a]\n";
  for (int i = 0; i < 20000; ++i) {
    lists += "[T_" + std::to_string(i) + "]\n\"1\"=a\n[AX_o" + std::to_string(i) + "]\nart=" + std::to_string(i) + "\n";
    values += "\"" + std::to_string(i) + "\"=v\n";
  }
  const std::string whole = "[T_a]\n\"1\"=a\n[AX_PunktortTA]\nhinweise=a\n[AX_o]\nart=a\nort=PunktortTA\n";
  std::vector<std::string> texts = {"",
                                    std::string(1, '\0'),
                                    std::string(5000, '\0'),
                                    std::string(1000000, '['),
                                    std::string("[T_\0]\n\"\0\"=\0", 12),
                                    "[AX_]\n[T_]\n[]\n[GLOBAL",
                                    lists,
                                    values,
                                    "[T_a]\n\"1\"=" + std::string(1000000, 'x') + "\n[AX_o]\nart=a\n"};
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) texts.push_back(whole.substr(0, cut));
  for (const std::string& text : texts) EXPECT_TRUE(Load(text)) << text.substr(0, 80);
  EXPECT_EQ(FindCatalogObject("o")->ort->hinweise, FindCatalogObject("o")->art);
}

}  // namespace
}  // namespace pktaus
