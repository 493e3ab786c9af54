// The host relies on the order in which its operations are called: each is noted here on its way to the stand-in.
#include "store/point_table.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "entry/host/host.h"
#include "store/object_types.h"
#include "store/stored_day.h"
#include "tests/support/clock_at.h"
#include "tests/support/open_project.h"
#include "tests/support/overflow_log.h"

namespace {

std::string calls;
std::map<void*, std::string> columns;

template <typename Operation>
Operation* Real(Operation*, const char* name) {
  return reinterpret_cast<Operation*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define NOTED(result, operation, parameters, arguments, note) \
  result operation parameters {                               \
    calls += std::string(note) + " ";                         \
    return Real(&operation, #operation) arguments;            \
  }

NOTED(void, vm_dbk_nxk_select, (HostTable * table), (table), "nxk")
NOTED(void, d4select, (void* data), (data), "d4select")
NOTED(void, db_i_select, (void* index), (index), "db_i_select")
NOTED(std::int32_t, d4reccount, (), (), "count")
NOTED(void, vm_koor_clear, (HostPoint * point), (point), "clear")
NOTED(void, vm_dbk_read, (HostTable * table, HostPoint* point, std::int32_t number, std::int32_t* error),
      (table, point, number, error), "read" + std::to_string(number))
NOTED(void, d4go, (std::int32_t number), (number), "go" + std::to_string(number))
NOTED(const char*, f4str, (void* column), (column), columns[column])
NOTED(double, f4double, (void* column), (column), "#" + columns[column])
NOTED(void, f4r_str, (void* column, const char* text), (column, text), columns[column] + "='" + text + "'")
NOTED(void, f4r_double, (void* column, double value), (column, value),
      columns[column] + "=" + std::to_string(static_cast<int>(value)))
NOTED(void, db_write, (std::int32_t number), (number), "write" + std::to_string(number))

void* f4ref(const char* name) {
  calls += std::string(name) + " ";
  void* column = Real(&f4ref, "f4ref")(name);
  if (column != nullptr) columns[column] = name;
  return column;
}

namespace pktaus {
namespace {

using support::TableFile;
using Rows = std::vector<TableFile::Values>;

class PointTable : public testing::Test {
 protected:
  void Open(const Rows& rows, const Rows& deleted = {},
            std::vector<support::TableColumn> columns = support::PointColumns()) {
    TableFile table(std::move(columns));
    for (const TableFile::Values& row : deleted) table.Add(row, true);
    for (const TableFile::Values& row : rows) table.Add(row);
    project_.emplace(std::move(table));
    columns_bind();
    calls.clear();
  }
  /// Number of the point that carries the identifier; empty where none does.
  static std::string PointOf(const char* identifier) {
    char number[16] = "";
    double east = 0, north = 0;
    const int found = point_find_by_gid(identifier, number, &east, &north, sizeof number);
    EXPECT_EQ(found, number[0] != '\0' ? 1 : 0);
    return number;
  }

  support::ClockAt clock_{"2016-03-02T09:05:03"};
  support::OverflowLog overflows_;
  std::optional<support::OpenProject> project_;
};

TEST_F(PointTable, CallsTheHostInItsOrderAndKeepsEveryValue) {
  TableFile::Values stored = {{"PT_NO", "2"}, {"GMLID", "B"}, {"NE_PKN", "326495651000017"}, {"NE_ANTRAGN", "B 2"}};
  stored.insert({{"EAST", "32650123.4560"}, {"NORTH", "5651234.5670"}, {"NE_DAT", "20160302"}, {"NE_LZV", "-2"}});
  stored.insert({{"NE_OBGID", "O"}, {"NE_WEPO", "W|C|"}, {"NE_AUFTRAG", "A"}});
  int value = 11;
  for (const char* column : {"NE_AKTION", "NE_PO", "NE_OA", "NE_ABM", "NE_BZA", "NE_ART", "NE_ZST", "NE_KST", "NE_HIN",
                             "NE_HER", "NE_GST", "NE_VTW"}) {
    stored[column] = std::to_string(value++);
  }
  Open({{{"PT_NO", "1"}, {"GMLID", "A"}}, stored, {{"PT_NO", "3"}}});
  PointRecord blank{}, read{};
  const std::string kSelect = "nxk d4select db_i_select ";
  const std::string kFound = kSelect + "count clear read1 clear read2 go2 ";
  const std::pair<std::function<void()>, std::string> kOperations[] = {
      {columns_bind, kSelect +
                         "NE_OA NE_ANTRAGN NE_AUFTRAG NE_PKN NE_PO NE_ABM NE_BZA NE_ART NE_ZST NE_KST NE_DAT "
                         "NE_HER NE_GST NE_VTW NE_LZV NE_HIN NE_OBGID NE_AKTION NE_WEPO PKN_ABM_BZA NASTABLE GMLID "},
      {[&] { EXPECT_EQ(PointOf("B"), "2"); }, kSelect + "count clear read1 go1 GMLID clear read2 go2 GMLID "},
      {[&] { EXPECT_EQ(point_read("2", &read), 0); },
       kFound + "#NE_PO #NE_OA NE_ANTRAGN NE_AUFTRAG NE_PKN #NE_AKTION #NE_ABM #NE_BZA #NE_ART #NE_ZST #NE_KST "
                "#NE_DAT #NE_HER #NE_GST #NE_VTW #NE_LZV #NE_HIN NE_OBGID GMLID NE_WEPO "},
      {[&] { point_write("2", &blank); },
       kFound + "NE_OA=0 NE_PKN='' NE_ANTRAGN='' NE_AUFTRAG='' NE_PO=0 NE_AKTION=0 NE_ABM=0 NE_BZA=0 NE_ART=0 "
                "NE_ZST=0 NE_KST=0 NE_DAT=0 NE_HER=0 NE_GST=0 NE_VTW=0 NE_LZV=0 NE_HIN=0 NE_OBGID='' write2 "},
      {[&] { point_write("2", &(put(read.auftrag, "123456789012345678901234567890123456789012345"), read)); },
       kFound +
           "NE_OA=13 NE_PKN='326495651000017' NE_ANTRAGN='B 2' NE_AUFTRAG='123456789012345678901234567890123456789' "
           "NE_PO=12 NE_AKTION=11 NE_ABM=14 NE_BZA=15 NE_ART=16 NE_ZST=17 NE_KST=18 NE_DAT=20160302 NE_HER=20 "
           "NE_GST=21 NE_VTW=22 NE_LZV=-2 NE_HIN=19 NE_OBGID='O' GMLID='B' NE_WEPO='W|C|' write2 "},
      {[&] { point_remove("2"); }, kFound + "NE_PO=0 NE_ANTRAGN='' NE_AUFTRAG='' write2 "},
      {[&] { EXPECT_EQ(point_count(), 3); }, "nxk count "},
  };
  for (const auto& [operation, expected] : kOperations) {
    calls.clear();
    operation();
    EXPECT_EQ(calls, expected);
  }
  EXPECT_EQ(std::to_string(read.east) + " " + std::to_string(read.north), "32650123.456000 5651234.567000");
  EXPECT_EQ(project_->Field(2, "NE_DAT"), "20160302") << "a day that every viewer shows";
  EXPECT_EQ(project_->Field(3, "NE_PKN"), std::string(20, ' ')) << "the neighbour";
}

TEST_F(PointTable, ReadsTheFirstReadableRecordOfANumber) {
  Open({{{"PT_NO", "A"}, {"EAST", "2"}},
        {{"PT_NO", "a"}, {"EAST", "3"}, {"NE_PO", "0"}, {"NE_ABM", "7"}},
        {{"PT_NO", "a"}}},
       {{{"PT_NO", "a"}, {"EAST", "1"}}});
  PointRecord record{};
  put(record.objid, "stays");
  record.bundesland = 7;
  PointRecord empty = record;
  SetEmptyRecord(&empty);
  empty.east = 3;
  record.abm = record.po = 9;
  EXPECT_EQ(point_read("a", &record), 1);
  EXPECT_EQ(std::memcmp(&record, &empty, sizeof record), 0);

  double east = -1, north = -1, elev = -1;
  char number[16] = "untouched";
  EXPECT_EQ(point_read_at(1, &east, &north, &elev, number, sizeof number), 0);
  EXPECT_STREQ(number, "untouched");
  EXPECT_EQ(point_read_at(3, &east, &north, &elev, number, sizeof number), 1);
  EXPECT_EQ(number + std::to_string(east), "a3.000000");
}

TEST_F(PointTable, LeavesAllAloneWhereThePointIsNotThere) {
  for (const bool with_table : {true, false}) {
    Open({});
    if (!with_table) project_.reset();
    columns_bind();
    PointRecord record{};
    record.po = kPoTA;
    EXPECT_EQ(point_read("1", &record), -1);
    EXPECT_EQ(record.po, kPoTA);
    point_write("1", &record);
    point_remove("1");
    EXPECT_EQ(PointOf("") + std::to_string(point_count()), "0");
    point_walk_orders([](const OrderRow&) { ADD_FAILURE(); });
  }
}

TEST_F(PointTable, TakesTextsAndNumbersAsFarAsTheyGo) {
  const std::string w(80, 'w');
  const struct {
    std::string stored, wepo;
    const char* stored_number;
    std::int32_t abm;
  } kValues[] = {{"", "", "1.99", 1},
                 {"  A  B", "A  B", "-1.99", -1},
                 {"\xC4pfel", "", "99999999999.00", std::numeric_limits<std::int32_t>::max()},
                 {"A\xC4", "A\xC4", "-99999999999.00", std::numeric_limits<std::int32_t>::min()},
                 {w.substr(1), w.substr(1), "******", 0},
                 {w, w.substr(1), "nan", 0}};
  for (const auto& value : kValues) {
    Open({{{"PT_NO", "1"}, {"NE_PO", "1"}, {"NE_WEPO", value.stored}, {"NE_ABM", value.stored_number}}}, {},
         {{"PT_NO", 'C', 15}, {"NE_PO", 'N', 2}, {"NE_WEPO", 'C', 80}, {"NE_ABM", 'N', 20, 2}});
    PointRecord record{};
    EXPECT_EQ(point_read("1", &record), 0);
    EXPECT_EQ(record.wepo, value.wepo);
    EXPECT_EQ(record.abm, value.abm);
    EXPECT_STREQ(record.gmlid, "") << "a column that the table lacks";
    EXPECT_EQ(overflows_.texts().size(), value.stored == w ? 1U : 0U) << value.stored;
  }
}

TEST_F(PointTable, FindsTheFirstPointOfAnIdentifier) {
  Open({{{"PT_NO", "1"}, {"GMLID", "DETH01"}},
        {{"PT_NO", "2"}, {"GMLID", "DETH01"}},
        {{"PT_NO", "3"}, {"GMLID", "DE TH 03"}},
        {{"PT_NO", "4"}, {"GMLID", "DETH04\xE4zzz"}},
        {{"PT_NO", "5"}}},
       {{{"PT_NO", "0"}, {"GMLID", "DETH01"}}});
  const std::pair<const char*, const char*> kCases[] = {
      {"DETH01", "1"}, {"deth01", ""}, {"DETH0", ""}, {"DETH03", "3"}, {"DE TH 03", ""}, {"DETH04", "4"}, {"", "5"},
  };
  for (const auto& [identifier, number] : kCases) EXPECT_EQ(PointOf(identifier), number) << identifier;
}

TEST_F(PointTable, WalksTheOrderNumbersOfReadableRecords) {
  Open({{{"PT_NO", "1"}, {"NE_AUFTRAG", "  A 1 "}, {"NE_ANTRAGN", std::string(43, 'b')}, {"EAST", "1.5"}},
        {{"PT_NO", "2"}, {"NE_AUFTRAG", "\xC4"}, {"EAST", "2.5"}}},
       {{{"PT_NO", "0"}, {"NE_AUFTRAG", "A"}}},
       {{"PT_NO", 'C', 15, 0}, {"EAST", 'N', 14, 4}, {"NE_AUFTRAG", 'C', 40, 0}, {"NE_ANTRAGN", 'C', 43, 0}});
  std::string seen;
  point_walk_orders([&seen](const OrderRow& row) {
    seen +=
        std::string(row.point_number) + "/" + row.auftrag + "/" + row.antragn + "/" + std::to_string(row.east) + " ";
  });
  EXPECT_EQ(seen, "1/A 1/" + std::string(43, 'b') + "/1.500000 2///2.500000 ");
  EXPECT_TRUE(overflows_.texts().empty());
}

TEST_F(PointTable, StoresTheLocalDayOfADateAndAnyOtherValueItself) {
  const struct {
    const char* name;
    std::int32_t seconds;
    std::int32_t stored;
    std::int32_t read;  // behind a trip through the table
  } kDays[] = {
      {"last value that is no date", 10000, 10000, 10000},
      {"in the afternoon", 1456873200 + 60000, 20160302, 1456873200},
      {"day on which clocks go forward", 1459033200 + 80000, 20160327, 1459033200},
      {"last day", std::numeric_limits<std::int32_t>::max(), 20380119, 2147468400},
      {"too long ago for eight digits of seconds", -149043600, 19650412, -149043600},
  };
  for (const auto& day : kDays) {
    EXPECT_EQ(StoredDay(day.seconds), day.stored) << day.name;
    EXPECT_EQ(SecondsOfStoredDay(day.stored), day.read) << day.name;
  }
  for (const std::int32_t none : {10001, 20160230, 20161301, 20160100, 20150229, 99999999, 20380120}) {
    EXPECT_EQ(SecondsOfStoredDay(none), none);
  }
}

TEST(ObjectTypes, AreFoundWithAndWithoutAPrefixOfThreeCharacters) {
  for (const char* name : {"Grenzpunkt", "AX_Grenzpunkt", "xx:Grenzpunkt"}) EXPECT_EQ(FindObjectTypeRow(name), 4);
  for (const char* name : {"grenzpunkt", "A_Grenzpunkt", "", "AX_AX_Grenzpunkt"})
    EXPECT_EQ(FindObjectTypeRow(name), -1);
}

}  // namespace
}  // namespace pktaus
