#include "store/schema.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
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

namespace fs = std::filesystem;
using support::BytesOf;
using support::TableColumn;
using support::TableFile;
using Columns = std::vector<TableColumn>;

Columns operator+(Columns a, const Columns& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Base columns in their order, the second one under the name that is free for it.
Columns BaseColumns(const char* east = "EAST") {
  return {{"PT_NO", 'C', 15, 0}, {east, 'N', 14, 4},   {"NORTH", 'N', 14, 4},   {"ELEV", 'N', 10, 5},
          {"CODE", 'C', 8, 0},   {"CLASS", 'C', 1, 0}, {"CONNECT", 'C', 15, 0}, {"STATUS", 'C', 1, 0},
          {"REM", 'C', 10, 0},   {"DRAW", 'C', 1, 0},  {"QUALITY", 'C', 1, 0}};
}

Columns AttributeColumns() {
  const Columns all = support::PointColumns();
  return {all.begin() + static_cast<std::ptrdiff_t>(support::HostColumns().size()), all.end() - 1};
}

Columns Without(Columns columns, const std::string& name) {
  std::erase_if(columns, [&](const TableColumn& column) { return column.name == name; });
  return columns;
}

// Three records that live and two that do not.
TableFile Filled(const Columns& columns, bool with_deleted = true, const std::string& column = "PT_NO") {
  TableFile table(columns);
  table.Add({{column, "1"}});
  if (with_deleted) table.Add({{column, "2"}}, true);
  table.Add({{column, "3\r\x1a*"}});
  table.Add({{column, "4"}});
  if (with_deleted) table.Add({{column, "5"}}, true);
  return table;
}

TEST(SchemaExtend, AddsWhatIsMissingBehindWhatIsThere) {
  const Columns kOddAttributes = {{"NE_WEPO", 'M', 10, 0}, {"PT_NO", 'N', 3, 1}, {"NE_oa", 'C', 200, 0}};
  const struct {
    const char* name;
    Columns before;
    Columns after;
  } kTables[] = {
      {"the host's table", support::HostColumns(), support::HostColumns() + AttributeColumns()},
      {"no columns at all", {}, BaseColumns() + AttributeColumns()},
      {"EAST without PT_NO",
       {{"EAST", 'N', 20, 2}},
       Columns{{"EAST", 'N', 20, 2}} + BaseColumns("EASa") + AttributeColumns()},
      {"columns of other types and cases", kOddAttributes, kOddAttributes + Without(AttributeColumns(), "NE_WEPO")},
      {"complete", support::PointColumns(), support::PointColumns()},
      {"a name of eleven characters", support::HostColumns() + Columns{{"PKN_ABM_BZA", 'C', 30, 0}},
       support::HostColumns() + Columns{{"PKN_ABM_BZ", 'C', 30, 0}} + AttributeColumns()},
      {"a longer name with the same beginning", support::HostColumns() + Columns{{"NE_ANTRAGNR", 'C', 9, 0}},
       support::HostColumns() + Columns{{"NE_ANTRAGN", 'C', 9, 0}} +
           Columns{{"NE_OA", 'N', 2, 0}, {"NE_ANTRAGa", 'C', 40, 0}} +
           Without(Without(AttributeColumns(), "NE_OA"), "NE_ANTRAGN")},
  };
  const support::TempFolder folder;
  for (const auto& table : kTables) {
    const std::string column = table.before.empty() ? "" : table.before[0].name;
    const std::string path = folder.Write("a.dbf", Filled(table.before, true, column).Bytes());
    pktaus::schema_extend(path.c_str());
    const std::string once = BytesOf(path);
    EXPECT_TRUE(once == Filled(table.after, false, column).Bytes()) << table.name;
    pktaus::schema_extend(path.c_str());
    EXPECT_TRUE(BytesOf(path) == once) << table.name << ", twice";
  }
  const std::string path = folder.Write("leer.dbf", TableFile(support::HostColumns()).Bytes());
  pktaus::schema_extend(path.c_str());
  EXPECT_TRUE(BytesOf(path) == TableFile(support::HostColumns() + AttributeColumns()).Bytes());
}

TEST(SchemaExtend, ClearsReservedBytesAndKeepsTheRestOfTheHeader) {
  std::string bytes = Filled(support::HostColumns()).Bytes();
  bytes[0] = '\x83';
  bytes[2] = 13;
  std::string expected = Filled(support::HostColumns() + AttributeColumns(), false).Bytes();
  expected[0] = '\x83';
  expected[2] = 13;
  for (std::size_t at = 12; at < 32; ++at) bytes[at] = 'r';
  for (std::size_t at = 32 + 18; at < 64; ++at) bytes[at] = 'r';
  bytes[32 + 12] = 'r';
  bytes[32 + 7] = 'r';  // behind the name's NUL
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", bytes + "rest");
  pktaus::schema_extend(path.c_str());
  EXPECT_TRUE(BytesOf(path) == expected);
}

// Records beyond the size of any buffer, with gaps at all kinds of places.
std::string LargeTable(const Columns& columns, int records, bool with_deleted) {
  TableFile table(columns);
  for (int i = 0; i < records; ++i) {
    const bool deleted = i % 7 == 3 || (i > 2000 && i < 4000);
    if (!deleted || with_deleted) table.Add({{"PT_NO", std::to_string(i)}}, deleted);
  }
  return table.Bytes();
}

TEST(SchemaExtend, KeepsEveryRecordOfALargeTable) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", LargeTable(support::HostColumns(), 8000, true));
  pktaus::schema_extend(path.c_str());
  EXPECT_TRUE(BytesOf(path) == LargeTable(support::HostColumns() + AttributeColumns(), 8000, false));
}

TEST(SchemaExtend, LeavesAFileThatCannotBeWrittenWithoutAWord) {
  const support::TempFolder folder;
  const std::string bytes = Filled(support::HostColumns()).Bytes();
  const std::string path = folder.Write("a.dbf", bytes);
  int opened = 0;
  const support::FaultyFiles files(
      [&](int, const std::string& name) { return name == "Open" && ++opened > 1 ? EACCES : 0; });
  platform::SetLastSystemError(0);
  EXPECT_NO_THROW(pktaus::schema_extend(path.c_str()));
  EXPECT_EQ(platform::LastSystemError(), 0);
  EXPECT_TRUE(BytesOf(path) == bytes);
}

TEST(SchemaExtend, LeavesOldOrNewTableAfterAnyFault) {
  const support::TempFolder folder;
  const std::string old_bytes = LargeTable(support::HostColumns(), 5000, true);
  const std::string new_bytes = LargeTable(support::HostColumns() + AttributeColumns(), 5000, false);
  bool reached = true;
  bool extended = false;
  for (int nth = 1; reached; ++nth) {
    const std::string path = folder.Write("a.dbf", old_bytes);
    std::string failed = "no fault";
    {
      const support::FaultyFiles files([&](int call, const std::string& name) {
        if (call == nth) failed = name;
        return call == nth ? EIO : 0;
      });
      try {
        pktaus::schema_extend(path.c_str());
      } catch (const CException&) {
      } catch (const pktaus::TableNotOpened&) {
      }
      reached = files.calls() >= nth;
    }
    const std::string stands = BytesOf(path);
    extended = stands == new_bytes;
    EXPECT_TRUE(extended || stands == old_bytes) << nth << " " << failed;
    std::vector<std::string> names;
    platform::RealFiles().List(folder.path(), &names);
    EXPECT_EQ(names.size(), 1U) << nth << " " << failed;
  }
  EXPECT_TRUE(extended);
}

TEST(SchemaExtend, RefusesATableThatChangesUnderIt) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", Filled(support::HostColumns()).Bytes());
  const auto table = pktaus::CDbfTable::Load(path.c_str());
  ASSERT_NE(table, nullptr);
  const std::string other = Filled(support::HostColumns(), false).Bytes();
  folder.Write("a.dbf", other.substr(0, other.size() - 30));
  const std::string changed = BytesOf(path);
  table->Save(path.c_str());
  EXPECT_TRUE(BytesOf(path) == changed);
}

// Kills a process that extends a table, at moments spread over its whole run.
TEST(SchemaExtend, LeavesOldOrNewTableWhenKilled) {
  const support::TempFolder folder;
  const std::string old_bytes = LargeTable(support::HostColumns(), 8000, true);
  const std::string new_bytes = LargeTable(support::HostColumns() + AttributeColumns(), 8000, false);
  const std::string path = folder.File("a.dbf");
  const auto start = [&] {
    const pid_t child = fork();
    if (child == 0) {
      pktaus::schema_extend(path.c_str());
      _exit(0);
    }
    return child;
  };
  const auto began = std::chrono::steady_clock::now();
  folder.Write("a.dbf", old_bytes);
  waitpid(start(), nullptr, 0);
  const auto whole_run =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - began).count();
  ASSERT_TRUE(BytesOf(path) == new_bytes);

  std::mt19937 random(20160302);
  std::uniform_int_distribution<int> moment(0, static_cast<int>(whole_run));
  int killed = 0;
  for (int round = 0; round < 30; ++round) {
    folder.Write("a.dbf", old_bytes);
    const pid_t child = start();
    usleep(static_cast<useconds_t>(moment(random)));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    killed += WIFSIGNALED(status) ? 1 : 0;
    const std::string stands = BytesOf(path);
    ASSERT_TRUE(stands == old_bytes || stands == new_bytes) << "round " << round;
  }
  EXPECT_GT(killed, 0);
  // What the killed ones left goes with the next run.
  pktaus::schema_extend(path.c_str());
  std::vector<std::string> names;
  platform::RealFiles().List(folder.path(), &names);
  EXPECT_EQ(names, std::vector<std::string>{"a.dbf"});
}

void Try(const std::string& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

// The laws of the fuzz target end the process where they are broken.
TEST(TableLaws, HoldForEveryCutAndEveryByteOfTheHeader) {
  const std::string bytes = Filled({{"PT_NO", 'C', 5, 0}, {"NE_OA", 'N', 2, 0}}).Bytes();
  for (std::size_t size = 0; size <= bytes.size(); ++size) Try(bytes.substr(0, size));
  for (std::size_t at = 0; at < 33 + 2 * 32; ++at) {
    for (const char value : {'\0', '\r', '\x1a', ' ', '*', '\x7f', '\x80', '\xff'}) {
      std::string changed = bytes;
      changed[at] = value;
      Try(changed);
    }
  }
}

TEST(TableLaws, HoldForTheCorpus) {
  int replayed = 0;
  for (const auto& entry : fs::directory_iterator(PKTAUS_SOURCE_DIR "/fuzz/corpus/table")) {
    Try(BytesOf(entry.path()));
    ++replayed;
  }
  EXPECT_GT(replayed, 0);
}

}  // namespace
