// The catalogues that ship, as the product reads them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

#include "base/text.h"
#include "catalog/catalog.h"
#include "store/object_types.h"

namespace pktaus {
namespace {

using namespace text::literals;

std::map<std::int32_t, std::string> Values(const CatalogTable* table) {
  std::map<std::int32_t, std::string> values;
  const CatalogEntry* entry = table != nullptr ? table->entries : nullptr;
  for (; entry != nullptr; entry = entry->next) EXPECT_TRUE(values.emplace(entry->code, entry->text).second);
  return values;
}

TEST(ShippedCatalogues, HaveAllObjectTypesWithTheirAttributes) {
  const struct {
    const char* name;
    const char* ort;
    std::size_t abmarkung, vermarkung, bemerkung, art;  // entries
  } kTypes[kObjectTypeCount] = {
      {"Aufnahmepunkt", "PunktortAU", 0, 250, 0, 0},
      {"BesondererBauwerkspunkt", "PunktortAG", 0, 0, 0, 3},
      {"BesondererGebaeudepunkt", "PunktortAG", 0, 0, 0, 4},
      {"BesondererTopographischerPunkt", "PunktortAU", 0, 0, 0, 0},
      {"Grenzpunkt", "PunktortTA", 250, 0, 4, 0},
      {"Sicherungspunkt", "PunktortAU", 0, 250, 0, 0},
      {"SonstigerVermessungspunkt", "PunktortAU", 0, 250, 0, 0},
  };
  for (int state = 1; state <= 16; ++state) {
    SCOPED_TRACE(state);
    char path[300];
    std::snprintf(path, sizeof path, "%s/data/%02d.ini", PKTAUS_SOURCE_DIR, state);
    CatalogFacts facts;
    ASSERT_TRUE(ReadCatalog(path, &facts));
    EXPECT_TRUE(facts.surplus.empty());
    for (int row = 0; row < kObjectTypeCount; ++row) {
      SCOPED_TRACE(kTypes[row].name);
      EXPECT_STREQ(object_types[row], kTypes[row].name) << "stored numbers keep their meaning";
      const CatalogObject* type = FindCatalogObject(object_types[row]);
      ASSERT_NE(type, nullptr);
      EXPECT_EQ(Values(type->abmarkung_Marke).size(), kTypes[row].abmarkung);
      EXPECT_EQ(Values(type->vermarkung_Marke).size(), kTypes[row].vermarkung);
      EXPECT_EQ(Values(type->bemerkungZurAbmarkung).size(), kTypes[row].bemerkung);
      EXPECT_EQ(Values(type->art).size(), kTypes[row].art);
      EXPECT_EQ(type->zustaendige_stelle, nullptr);
      ASSERT_NE(type->ort, nullptr);
      EXPECT_STREQ(type->ort->name, kTypes[row].ort);
      EXPECT_EQ(Values(type->ort->koordinatenstatus).size(), 6U);
      EXPECT_EQ(Values(type->ort->vertrauenswuerdigkeit).size(), 4U);
      EXPECT_EQ(Values(type->ort->hinweise).size(), state == 16 ? 4U : 0U);
      const auto origins = Values(type->ort->herkunft);
      EXPECT_EQ(origins.size(), 81U);
      EXPECT_EQ(origins.count(100), 1U) << "written as 0100";
      const auto accuracy = Values(type->ort->genauigkeitsstufe);
      EXPECT_EQ(accuracy.size(), 15U);
      EXPECT_EQ(accuracy.begin()->first, 1000) << "0900 would be written as 900";
      EXPECT_TRUE(type->ort->ueberpruefungsdatum && type->ort->lagezuverlaessigkeit);
    }
  }
  const auto marks = Values(FindValueList("Marke"));
  EXPECT_EQ(marks.at(9500), "Ohne Marke");
  EXPECT_EQ(marks.at(1400), "Meißelzeichen (z. B. Kreuz, Kerbe, Anker)"_ansi);
  EXPECT_EQ(marks.at(9000), "Marke unter 'Bemerkung' näher definiert"_ansi);
  EXPECT_EQ(
      marks.at(2135),
      "Festlegung RBP-Feld, Pfeilerkopf 16x16 cm mit Gravur \"TP\" und \"Dreieck\", Bezugspunkt Platte 30x30-35x35 cm");
  EXPECT_TRUE(Values(FindValueList("Datenerhebung")).at(4360).ends_with("1 zu 1000)")) << "not cut";
}

}  // namespace
}  // namespace pktaus
