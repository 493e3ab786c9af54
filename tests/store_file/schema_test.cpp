#include "store/schema.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/failure.h"
#include "platform/file.h"
#include "platform/system.h"
#include "store/dbf_table.h"
#include "tests/support/faulty_files.h"
#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using support::BytesOf;
using support::HostColumns;
using support::TableColumn;
using support::TableFile;
using Columns = std::vector<TableColumn>;
using namespace std::literals;

Columns operator+(Columns a, const Columns& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Those from the `first` one on, without GMLID, which is never added.
Columns AttributeColumns(int first = 0) {
  const Columns all = support::PointColumns();
  return {all.begin() + static_cast<std::ptrdiff_t>(HostColumns().size()) + first, all.end() - 1};
}

// Records with bytes of all kinds, some of them deleted: of one block, or of many with gaps at all kinds of places.
std::string Table(const Columns& columns, bool with_deleted, int records = 5) {
  TableFile table(columns);
  for (int i = 0; i < records; ++i) {
    const bool deleted = i % 7 == 3 || (i > 2000 && i < 4000);
    if (deleted && !with_deleted) continue;
    table.Add({{columns[0].name, std::to_string(i) + "\r\x1a*"}}, deleted);
  }
  return table.Bytes();
}

TEST(SchemaExtend, AddsWhatIsMissingBehindWhatIsThere) {
  const Columns kEast = {{"EAST", 'N', 20, 2}};
  const Columns kBase = {{"PT_NO", 'C', 15, 0}, {"EASa", 'N', 14, 4}, {"NORTH", 'N', 14, 4},   {"ELEV", 'N', 10, 5},
                         {"CODE", 'C', 8, 0},   {"CLASS", 'C', 1, 0}, {"CONNECT", 'C', 15, 0}, {"STATUS", 'C', 1, 0},
                         {"REM", 'C', 10, 0},   {"DRAW", 'C', 1, 0},  {"QUALITY", 'C', 1, 0}};
  const Columns kAll = AttributeColumns();
  const Columns kOdd = {{"NE_WEPO", 'M', 10, 0}, {"PT_NO", 'N', 3, 1}, {"NE_oa", 'C', 200, 0}};
  const struct {
    const char* name;
    Columns before;
    Columns after;
  } kTables[] = {
      {"the host's table", HostColumns(), HostColumns() + kAll},
      {"EAST without PT_NO", kEast, kEast + kBase + kAll},
      {"columns of other types and cases", kOdd, kOdd + Columns(kAll.begin(), kAll.end() - 1)},
      {"a longer name with the same beginning", HostColumns() + Columns{{"NE_ANTRAGNR", 'C', 9, 0}},
       HostColumns() + Columns{{"NE_ANTRAGN", 'C', 9, 0}, {"NE_OA", 'N', 2, 0}, {"NE_ANTRAGa", 'C', 40, 0}} +
           AttributeColumns(2)},
  };
  const support::TempFolder folder;
  for (const auto& table : kTables) {
    // Version and date stay; reserved bytes and what stands behind the end do not.
    std::string bytes = Table(table.before, true) + "rest";
    std::string expected = Table(table.after, false);
    bytes[0] = expected[0] = '\x83';
    bytes[2] = expected[2] = 13;
    std::fill(bytes.begin() + 12, bytes.begin() + 32, 'r');
    for (std::size_t i = 1; i <= table.before.size(); ++i) {
      bytes[32 * i + 12] = bytes[32 * i + 31] = 'r';
      if (table.before[i - 1].name.size() < 10) bytes[32 * i + 10] = 'r';  // behind the name's NUL
    }
    const std::string path = folder.Write("a.dbf", bytes);
    for (int time = 1; time <= 2; ++time) {
      static_cast<void>(pktaus::schema_extend(path.c_str()));
      EXPECT_TRUE(BytesOf(path) == expected) << table.name << time;
    }
  }
}

// A header of 97 bytes and three records of 31, the second one deleted; cut to `size` bytes.
std::string Small(std::size_t size = 191) {
  TableFile table({{"PT_NO", 'C', 15, 0}, {"EAST", 'N', 15, 4}});
  table.Add({{"PT_NO", "1"}, {"EAST", "1.5"}});
  table.Add({{"PT_NO", "2"}}, true);
  table.Add({{"PT_NO", "3"}});
  return table.Bytes().substr(0, size);
}

std::string With(std::size_t at, std::string_view bytes, std::string table = Small()) {
  return table.replace(at, bytes.size(), bytes);
}

// Fields of one byte, each with a name of its own.
std::string Fields(int count) {
  Columns columns;
  for (int i = 0; i < count; ++i) columns.push_back({"F" + std::to_string(i), 'C', 1});
  return TableFile(columns).Bytes();
}

TEST(SchemaExtend, TellsWhatIsBrokenAndWhereAndLeavesTheFile) {
  const struct {
    const char* name;
    std::string bytes;
    const char* said;  // "gut" and how many records there are where it is none
  } kTables[] = {
      {"empty file", "", "endet im Kopf (Stelle 0)"},
      {"no byte for 0x0D", Small(96), "endet im Kopf (Stelle 96)"},
      {"0x0D overwritten", With(96, "\0"s), "fehlt das Endezeichen (Stelle 96)"},
      {"descriptors without an end", With(8, "\x60"), "fehlt das Endezeichen (Stelle 96)"},
      {"Visual FoxPro", With(0, "\x30", With(8, "\x68\x01"s)), "Es ist eine Tabelle von Visual FoxPro. Speichern"},
      {"dBase 7", With(0, "\x04", With(8, "\xA5"s)), "Es ist eine Tabelle von dBase 7. Speichern"},
      {"dBase II", With(0, "\x02", With(8, "\x62")), "Es ist eine Tabelle von dBase II. Speichern"},
      {"header of another form", With(8, "\x62"), "des Kopfes passt nicht zu den Feldbeschreibungen (Stelle 8)"},
      {"header with a link", With(8, "\x68\x01", Small().insert(97, 263, '\0')), "Feldbeschreibungen (Stelle 8)"},
      {"encrypted", With(15, "\1"), "sind verschl\xFCsselt (Stelle 15)"},
      {"256 fields", Fields(256), "mehr als 255 Felder (Stelle 8)"},
      {"no room for all new columns", Fields(226), "mehr als 255 Felder (Feld 256)"},
      {"last record cut", Small(189), "endet mitten in einem Datensatz (Stelle 159, Datensatz 3)"},
      {"second flag lost", With(128, "\0"s), "obwohl der Kopf weitere z\xE4hlt (Stelle 128, Datensatz 2)"},
      {"too many, rubbish behind", With(4, "\4") + "x", "der Kopf weitere z\xE4hlt (Stelle 190, Datensatz 4)"},
      {"too many, nothing behind", With(4, "\xff\xff\xff\xff"), "gut: 2"},
      {"too many, zero bytes behind", With(4, "\x9") + std::string(500, '\0') + "\x1a", "gut: 2"},
      {"a record that is not counted", With(4, "\2"), "gut: 2"},
      {"a record less than counted, no end mark", Small(159), "gut: 1"},
  };
  const support::TempFolder folder;
  for (const auto& table : kTables) {
    const std::string path = folder.Write("punkte.dbf", table.bytes);
    std::string said;
    try {
      static_cast<void>(pktaus::schema_extend(path.c_str()));
      said = "gut: " + std::to_string(BytesOf(path)[4]);
    } catch (const CException& failure) {
      said = failure.ErrorText();
      EXPECT_TRUE(said.starts_with("Die Punkttabelle '" + path + "' ")) << said;
      EXPECT_TRUE(BytesOf(path) == table.bytes) << table.name;
    }
    EXPECT_NE(said.find(table.said), std::string::npos) << table.name << ": " << said;
  }
}

TEST(SchemaExtend, OfAPathThatCannotBeOpenedIsAFailureOfTheSystem) {
  const support::TempFolder folder;
  const std::string missing = folder.File("fehlt.dbf");
  const std::pair<const char*, int> kPaths[] = {
      {nullptr, ENOENT}, {"", ENOENT}, {missing.c_str(), ENOENT}, {folder.path().c_str(), EISDIR}};
  for (const auto& [path, error] : kPaths) {
    platform::SetLastSystemError(0);
    EXPECT_THROW(static_cast<void>(pktaus::schema_extend(path)), pktaus::TableNotOpened);
    EXPECT_EQ(platform::LastSystemError(), error);
  }
}

TEST(SchemaExtend, LeavesOldOrNewTableAfterAnyFault) {
  const support::TempFolder folder;
  const std::string old_bytes = Table(HostColumns(), true, 5000);
  const std::string new_bytes = Table(HostColumns() + AttributeColumns(), false, 5000);
  bool reached = true;
  bool extended = false;
  for (int nth = 1; reached; ++nth) {
    const std::string path = folder.Write("a.dbf", old_bytes);
    {
      const support::FaultyFiles files([&](int call, const std::string&) { return call == nth ? EIO : 0; });
      try {
        static_cast<void>(pktaus::schema_extend(path.c_str()));
      } catch (const CException&) {
      } catch (const pktaus::TableNotOpened&) {
      }
      reached = files.calls() >= nth;
    }
    const std::string stands = BytesOf(path);
    extended = stands == new_bytes;
    EXPECT_TRUE(extended || stands == old_bytes) << nth;
    std::vector<std::string> names;
    platform::RealFiles().List(folder.path(), &names);
    EXPECT_EQ(names.size(), 1U) << nth;
  }
  EXPECT_TRUE(extended);
}

// One name as it was given and a letter for each of the alphabet behind it; then no name is free.
TEST(Table, GivesColumnsOfOneNameALetterEachAsLongAsThereIsOne) {
  for (const std::string name : {"NE_ANTRAGN_LANG", "A"}) {
    pktaus::CDbfTable table;
    pktaus::DbfFault fault;
    for (int count = 0; count <= 160; ++count) {
      const pktaus::DbfField* field = table.AddField(name, 'C', 1, 0, &fault);
      ASSERT_EQ(field != nullptr, count <= 26) << count;
      std::string expected = name.substr(0, 10);
      if (count > 0) expected.back() = static_cast<char>('a' + count - 1);
      EXPECT_EQ(field != nullptr ? field->short_name : "", count <= 26 ? expected : "");
      EXPECT_EQ(fault.kind, count <= 26 ? pktaus::DbfFault::kNone : pktaus::DbfFault::kFieldName);
    }
  }
}

TEST(SchemaExtend, RefusesATableThatChangesUnderIt) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", Table(HostColumns(), true));
  const auto table = pktaus::CDbfTable::Load(path.c_str());
  ASSERT_NE(table, nullptr);
  const std::string changed = Table(HostColumns(), true, 3);
  folder.Write("a.dbf", changed);
  EXPECT_EQ(table->Save(path.c_str()), EBUSY);
  EXPECT_TRUE(BytesOf(path) == changed);
}

// The laws of the fuzz target end the process where they are broken.
TEST(TableLaws, HoldForTheCorpusForEveryCutAndForEveryByteOfTheHeader) {
  const std::string bytes = Table({{"PT_NO", 'C', 5, 0}, {"NE_OA", 'N', 2, 0}}, true);
  std::vector<std::string> tables;
  for (const auto& entry : std::filesystem::directory_iterator(PKTAUS_SOURCE_DIR "/fuzz/corpus/table")) {
    tables.push_back(BytesOf(entry.path()));
  }
  for (std::size_t size = 0; size <= bytes.size(); ++size) tables.push_back(bytes.substr(0, size));
  for (std::size_t at = 0; at < 33 + 2 * 32; ++at) {
    for (const char value : {'\0', '\r', '\x1a', ' ', '*', '\x7f', '\x80', '\xff'}) {
      tables.push_back(bytes);
      tables.back()[at] = value;
    }
  }
  for (const std::string& table : tables) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(table.data()), table.size());
  }
}

}  // namespace
