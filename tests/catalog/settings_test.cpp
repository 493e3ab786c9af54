#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/bounded.h"
#include "catalog/catalog_store.h"
#include "entry/host/desktop.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

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
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  std::string Path() const { return folder_.File("pktausout.ini"); }
  void Write(const std::string& text) { folder_.Write("pktausout.ini", text); }
  std::string Saved(const CCatalogStore& store) {
    store.SaveSettings();
    return support::BytesOf(Path());
  }

  support::TempFolder folder_;
  support::ScriptedDesktop desktop_;
};

/// A store whose every setting has a value of its own.
void Fill(CCatalogStore* store) {
  EXPECT_TRUE(store->LoadCatalog(16));
  store->organisation = "Büro";
  store->orig_xml = "/a b/o.xml";
  store->point_xml_folder = "/r";
  PointRecord& record = store->defaults;
  put(record.antragn, "An 1");
  put(record.auftrag, "Au 1");
  put(record.pkn, "p");
  record.bundesland = 16;
  record.oa = 2;
  std::int32_t value = 100;
  for (auto field : {&PointRecord::abm, &PointRecord::bza, &PointRecord::art, &PointRecord::zst, &PointRecord::kst,
                     &PointRecord::dat, &PointRecord::her, &PointRecord::hin, &PointRecord::gst, &PointRecord::vtw}) {
    record.*field = value++;
  }
  record.lzv = kLzvNotGiven;
}

const char kFilled[] =
    "[EINSTELLUNGEN]\r\nBUNDESLAND = \"16\"\r\nORGANISATION = \"Büro\"\r\nPUNKTTYPE = \"Zwei\"\r\n"
    "ANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\nORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\n"
    "ABM = \"100\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\nKST = \"104\"\r\nDAT = \"105\"\r\n"
    "HER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\nLZV = \"-2\"\r\n";

TEST_F(Settings, AreWrittenFromNothingAndReadBack) {
  CCatalogStore written;
  Fill(&written);
  EXPECT_EQ(Saved(written), kFilled);

  CCatalogStore read;
  put(read.defaults.pkn, "x");
  put(read.defaults.obgid, "x");
  read.defaults.aktion = kAktionDelete;
  read.LoadSettings();
  EXPECT_EQ(Numbers(read.defaults), Numbers(written.defaults));
  EXPECT_EQ(read.catalog_number, 16);
  EXPECT_EQ(read.header_name, "16.XML");
  EXPECT_EQ(read.organisation + read.orig_xml + read.point_xml_folder, "Büro/a b/o.xml/r");
  EXPECT_STREQ(read.defaults.antragn, "An 1");
  EXPECT_STREQ(read.defaults.auftrag, "Au 1");
  EXPECT_STREQ(read.defaults.pkn, "");
  EXPECT_STREQ(read.defaults.obgid, "");
  EXPECT_EQ(read.defaults.aktion, kAktionNew);
  PointRecord copy{};
  EXPECT_EQ(read.defaults_copy(&copy), 0);
  EXPECT_STREQ(copy.auftrag, "Au 1");
  EXPECT_EQ(Saved(read), kFilled) << "nothing changed, the same file";
}

TEST_F(Settings, AreTakenAsFarAsTheyGo) {
  const std::string empty_record = "13 0 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -2 ";
  const std::string zeros = " 0 0 0 0 0 0 0 0 0 0 0 ";
  const struct {
    const char* name;
    std::string file;
    std::string numbers;
    int catalog;
  } kCases[] = {
      {"no section", "[Other]\nBUNDESLAND=16\n", empty_record, 0},
      {"section in other case", "[Einstellungen]\nABM=1\n", empty_record, 0},
      {"no keys", "[EINSTELLUNGEN]\n", "13 0" + zeros, 0},
      {"keys in lower case", "[EINSTELLUNGEN]\nbundesland=16\nabm='7'\nlzv = \"-2\"\n", "16 0 7 0 0 0 0 0 0 0 0 0 -2 ",
       16},
      {"quoted keys", "[EINSTELLUNGEN]\n\"ABM\"=7\n'BZA'=8\n", "13 0 0 8 0 0 0 0 0 0 0 0 0 ", 0},
      {"type of the catalogue", "[EINSTELLUNGEN]\nPUNKTTYPE=Eins\nBUNDESLAND=16\n", "16 1" + zeros, 16},
      {"type that it lacks", "[EINSTELLUNGEN]\nPUNKTTYPE=Grenzpunkt\nBUNDESLAND=16\n", "16 0" + zeros, 16},
      {"state without a catalogue", "[EINSTELLUNGEN]\nBUNDESLAND=4\n", "4 0" + zeros, 4},
      {"no number", "[EINSTELLUNGEN]\nBUNDESLAND=NRW\nKST=x\n", "0 0" + zeros, 0},
      {"first of two", "[EINSTELLUNGEN]\nABM=1\nABM=2\n[EINSTELLUNGEN]\nBZA=3\n", "13 0 1 0 0 0 0 0 0 0 0 0 0 ", 0},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.name);
    Write(row.file);
    CCatalogStore store;
    store.LoadSettings();
    EXPECT_EQ(Numbers(store.defaults), row.numbers);
    EXPECT_EQ(store.catalog_number, row.catalog);
  }
  std::filesystem::remove(Path());
  CCatalogStore store;
  store.LoadSettings();
  EXPECT_EQ(Numbers(store.defaults), empty_record) << "no file";
  EXPECT_TRUE(desktop_.boxes.empty());
}

TEST_F(Settings, OfAnExistingFileKeepOrderQuotesAndStrangers) {
  Write("# lost\n[A]\nk=1\n\"free\"=2\n[EINSTELLUNGEN]\nlzv=0\nfremd='x'\nabm='5'\norganisation=\"q\"q\"\n[Z]\n");
  CCatalogStore store;
  Fill(&store);
  store.organisation = "q";
  store.defaults.oa = 7;
  EXPECT_EQ(Saved(store),
            "[A]\r\nK = 1\r\n[EINSTELLUNGEN]\r\nLZV = -2\r\nFREMD = 'x'\r\nABM = '100'\r\nORGANISATION = \"q\"\r\n"
            "BUNDESLAND = \"16\"\r\nPUNKTTYPE = \"\"\r\nANTRAGNUMMER = \"An 1\"\r\nAUFTRAGNR = \"Au 1\"\r\n"
            "ORIGXML = \"/a b/o.xml\"\r\nPUNKTXMLFOLDER = \"/r\"\r\nBZA = \"101\"\r\nART = \"102\"\r\nZST = \"103\"\r\n"
            "KST = \"104\"\r\nDAT = \"105\"\r\nHER = \"106\"\r\nHIN = \"107\"\r\nGST = \"108\"\r\nVTW = \"109\"\r\n"
            "[Z]\r\n");
}

TEST_F(Settings, ThatCannotBeWrittenLiveOnInTheStore) {
  std::filesystem::create_directory(Path());
  CCatalogStore store;
  Fill(&store);
  store.SaveSettings();
  EXPECT_TRUE(std::filesystem::is_directory(Path()));
  SetPluginFolder(folder_.File("gone"));
  store.SaveSettings();
  EXPECT_FALSE(std::filesystem::exists(folder_.File("gone")));
  EXPECT_EQ(store.organisation, "Büro");
  EXPECT_TRUE(desktop_.boxes.empty());
}

TEST_F(Settings, AreReadOnceByTheStoreOfTheProcess) {
  Write("[EINSTELLUNGEN]\nORGANISATION=first\n");
  CCatalogStore* store = get_catalog_store();
  EXPECT_EQ(store->organisation, "first");
  Write("[EINSTELLUNGEN]\nORGANISATION=second\n");
  EXPECT_EQ(get_catalog_store(), store);
  EXPECT_EQ(store->organisation, "first");
}

}  // namespace
}  // namespace pktaus
