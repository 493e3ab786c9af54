#include "catalog/catalog_store.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/bounded.h"
#include "entry/host/desktop.h"
#include "store/point_table.h"
#include "tests/support/open_project.h"

namespace pktaus {
namespace {

/// All numbers of the defaults, `bundesland` first.
std::string Numbers(const PointRecord& r) {
  std::string all;
  for (const std::int32_t number :
       {r.bundesland, r.oa, r.abm, r.bza, r.art, r.zst, r.kst, r.dat, r.her, r.hin, r.gst, r.vtw, r.lzv}) {
    all += std::to_string(number) + " ";
  }
  return all;
}

class Settings : public testing::Test {
 protected:
  Settings() {
    SetPluginFolder(folder_.path());
    folder_.Write("16.ini", "[GLOBAL]\nHEADER=16.XML\n[AX_Zwei]\n[AX_Eins]\n[AX_Null]\n");
  }
  ~Settings() override { SetPluginFolder(""); }

  std::string Saved() const {
    store_.SaveSettings();
    return support::BytesOf(folder_.File("pktausout.ini"));
  }

  support::TempFolder folder_;
  CCatalogStore store_;
};

const char kFilled[] =
    "[EINSTELLUNGEN]\r\nBUNDESLAND = \"16\"\r\nORGANISATION = \"B\xFCro\"\r\nPUNKTTYPE = \"Zwei\"\r\n"
    "ANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\nORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\n"
    "ABM = \"100\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\nKST = \"104\"\r\nDAT = \"105\"\r\n"
    "HER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\nLZV = \"-2\"\r\n";

TEST_F(Settings, AreReadAndWrittenFromNothing) {
  put(store_.defaults.pkn, "x");
  put(store_.defaults.obgid, "x");
  store_.defaults.aktion = kAktionDelete;
  folder_.Write("pktausout.ini", kFilled);
  store_.LoadSettings();
  EXPECT_EQ(Numbers(store_.defaults), "16 2 100 101 102 103 104 105 106 107 108 109 -2 ");
  EXPECT_EQ(store_.catalog_number, 16);
  EXPECT_EQ(store_.header_name, "16.XML");
  EXPECT_EQ(store_.organisation + store_.orig_xml + store_.point_xml_folder, "B\xFCro/a b/o.xml/r");
  PointRecord copy{};
  EXPECT_EQ(store_.defaults_copy(&copy), 0);
  EXPECT_EQ(std::string(copy.antragn) + copy.auftrag + copy.pkn + copy.obgid, "An 1Au 1");
  EXPECT_EQ(copy.aktion, kAktionNew);
  std::filesystem::remove(folder_.File("pktausout.ini"));
  EXPECT_EQ(Saved(), kFilled);
  EXPECT_EQ(Saved(), kFilled) << "nothing changed, the same file";
}

TEST_F(Settings, AreTakenAsFarAsTheyGo) {
  const std::string empty_record = "13 0 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -2 ";
  const std::string zeros = " 0 0 0 0 0 0 0 0 0 0 0 ";
  const std::pair<std::string, std::string> kFiles[] = {
      {"[Other]\nBUNDESLAND=16\n", empty_record},
      {"[Einstellungen]\nABM=1\n", empty_record},
      {"[EINSTELLUNGEN]\n", "13 0" + zeros},
      {"[EINSTELLUNGEN]\nbundesland=16\nabm='7'\nlzv = \"-2\"\n", "16 0 7 0 0 0 0 0 0 0 0 0 -2 "},
      {"[EINSTELLUNGEN]\n\"ABM\"=7\n'BZA'=8\n", "13 0 0 8 0 0 0 0 0 0 0 0 0 "},
      {"[EINSTELLUNGEN]\nPUNKTTYPE=Eins\nBUNDESLAND=16\n", "16 1" + zeros},
      {"[EINSTELLUNGEN]\nPUNKTTYPE=Grenzpunkt\nBUNDESLAND=16\n", "16 0" + zeros},
      {"[EINSTELLUNGEN]\nBUNDESLAND=4\n", "4 0" + zeros},
      {"[EINSTELLUNGEN]\nBUNDESLAND=NRW\nKST=x\n", "0 0" + zeros},
      {"[EINSTELLUNGEN]\nABM=1\nABM=2\n[EINSTELLUNGEN]\nBZA=3\n", "13 0 1 0 0 0 0 0 0 0 0 0 0 "},
  };
  for (const auto& [file, numbers] : kFiles) {
    folder_.Write("pktausout.ini", file);
    CCatalogStore store;
    store.LoadSettings();
    EXPECT_EQ(Numbers(store.defaults), numbers) << file;
  }
}

TEST_F(Settings, OfAnExistingFileKeepOrderQuotesAndStrangers) {
  folder_.Write("pktausout.ini", kFilled);
  store_.LoadSettings();
  store_.organisation = "q";
  store_.defaults.oa = 7;
  folder_.Write(
      "pktausout.ini",
      "# lost\n[A]\nk=1\n\"free\"=2\n[EINSTELLUNGEN]\nlzv=0\nfremd='x'\nabm='5'\norganisation=\"q\"q\"\n[Z]\n");
  EXPECT_EQ(Saved(),
            "[A]\r\nK = 1\r\n[EINSTELLUNGEN]\r\nLZV = -2\r\nFREMD = 'x'\r\nABM = '100'\r\nORGANISATION = \"q\"\r\n"
            "BUNDESLAND = \"16\"\r\nPUNKTTYPE = \"\"\r\nANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\n"
            "ORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\n"
            "KST = \"104\"\r\nDAT = \"105\"\r\nHER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\n"
            "[Z]\r\n");
}

TEST(Orders, OfPointsWithBothNumbersRunInTheReverseOfTheTable) {
  support::TableFile table(support::PointColumns());
  const char* const kPoints[][3] = {{"1", "A", "x"}, {"2", "a", "x"}, {"3", "A", ""}, {"4", "", "x"}, {"1", "A", "y"}};
  for (const auto& [number, auftrag, antragn] : kPoints) {
    table.Add({{"PT_NO", number}, {"NE_AUFTRAG", auftrag}, {"NE_ANTRAGN", antragn}, {"EAST", "1.5"}, {"NORTH", "2.5"}});
  }
  const support::OpenProject project(std::move(table));
  columns_bind();
  CCatalogStore store;
  for (int time = 0; time < 2; ++time) {
    store.orders_clear();
    store.orders_collect();
    std::string all;
    for (const OrderEntry* order = store.orders; order != nullptr; order = order->next) {
      all += std::string(order->auftrag) + ":";
      for (const OrderPoint* point = order->points; point != nullptr; point = point->next) {
        all += std::string(" ") + point->pt_no + "(" + point->antragn + ")";
      }
      all += "\n";
    }
    EXPECT_EQ(all, "a: 2(x)\nA: 1(y) 1(x)\n");
    EXPECT_EQ(store.orders->points->east, 1.5);
    EXPECT_EQ(store.orders->points->north, 2.5);
  }
}

}  // namespace
}  // namespace pktaus
