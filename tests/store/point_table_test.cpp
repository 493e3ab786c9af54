#include "store/point_table.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "tests/support/clock_at.h"
#include "tests/support/open_project.h"
#include "tests/support/overflow_log.h"

namespace pktaus {
namespace {

using support::TableFile;

/// A record whose every byte is 'x', so that what a read leaves alone can be told.
PointRecord Scribbled() {
  PointRecord record;
  std::memset(static_cast<void*>(&record), 'x', sizeof record);
  return record;
}

PointRecord Filled() {
  PointRecord record{};
  put(record.pkn, "326495651000017");
  put(record.auftrag, "A-1");
  put(record.antragn, "B 2");
  put(record.obgid, "DETH00000000000A");
  put(record.gmlid, "DETH00000000000B");
  put(record.wepo, "AX_PunktortAU|DETH00000000000C|");
  record.aktion = kAktionReplace;
  record.po = kPoAG;
  record.oa = 4;
  record.abm = 1110;
  record.bza = 4000;
  record.art = 0;
  record.zst = 42;
  record.kst = 1000;
  record.dat = 1456873200;
  record.hin = kNoChoice;
  record.her = 12345678;
  record.gst = 2100;
  record.vtw = 1200;
  record.lzv = kLzvNotGiven;
  return record;
}

/// All fields but the coordinates, for comparisons that say what differs.
std::string Show(const PointRecord& r) {
  std::string all;
  for (const char* text : {r.pkn, r.auftrag, r.antragn, r.obgid, r.gmlid, r.wepo}) all += std::string(text) + "/";
  all += std::string(r.objid, 1) + "/" + std::to_string(reinterpret_cast<std::uintptr_t>(r.next));
  for (const std::int32_t number : {r.aktion, r.po, r.bundesland, r.oa, r.abm, r.bza, r.art, r.zst, r.kst, r.dat, r.hin,
                                    r.her, r.gst, r.vtw, r.lzv}) {
    all += " " + std::to_string(number);
  }
  return all;
}

class PointTable : public testing::Test {
 protected:
  /// Opens a table of attribute columns with these records.
  void Open(const std::vector<TableFile::Values>& rows) {
    TableFile table(support::PointColumns());
    for (const TableFile::Values& row : rows) table.Add(row);
    Open(std::move(table));
  }
  void Open(TableFile table) {
    project_.emplace(std::move(table));
    columns_bind();
  }

  support::ClockAt clock_{"2016-03-02T09:05:03"};
  support::OverflowLog overflows_;
  std::optional<support::OpenProject> project_;
};

TEST_F(PointTable, KeepsEveryValueOfARecord) {
  Open({{{"PT_NO", "1"}}, {{"PT_NO", "2"}, {"EAST", "32650123.4560"}, {"NORTH", "5651234.5670"}}});
  PointRecord written = Filled();
  point_write("2", &written);
  PointRecord read{};
  read.bundesland = written.bundesland = 13;
  read.next = written.next = &written;
  EXPECT_EQ(point_read("2", &read), 0);
  EXPECT_EQ(read.east, 32650123.456);
  EXPECT_EQ(read.north, 5651234.567);
  EXPECT_EQ(Show(read), Show(written));
  EXPECT_EQ(project_->Field(2, "NE_DAT"), "20160302") << "a day that every viewer shows";
  EXPECT_EQ(project_->Field(2, "NE_LZV"), "      -2");
  EXPECT_EQ(project_->Field(1, "NE_PKN"), std::string(20, ' ')) << "the neighbour";
}

TEST_F(PointTable, ReadsAPointWithoutAttributesAsTheEmptyRecord) {
  Open({{{"PT_NO", "1"}, {"EAST", "1.5"}, {"NORTH", "2.5"}, {"NE_PO", "0"}, {"NE_PKN", "old"}, {"NE_ABM", "7"}},
        {{"PT_NO", "2"}}});
  PointRecord record = Scribbled();
  EXPECT_EQ(point_read("1", &record), 1);
  EXPECT_EQ(record.east, 1.5);
  EXPECT_EQ(record.north, 2.5);
  const PointRecord untouched = Scribbled();
  EXPECT_EQ(Show(record), "//////x/" + std::to_string(reinterpret_cast<std::uintptr_t>(untouched.next)) + " 0 0 " +
                              std::to_string(untouched.bundesland) + " -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -2");
  EXPECT_EQ(point_read("2", &record), 1) << "blank columns";
}

TEST_F(PointTable, FindsTheFirstReadableRecordOfANumber) {
  TableFile table(support::PointColumns());
  table.Add({{"PT_NO", "a"}, {"EAST", "1"}}, /*deleted=*/true);
  table.Add({{"PT_NO", "A"}, {"EAST", "2"}});
  table.Add({{"PT_NO", "a"}, {"EAST", "3"}});
  table.Add({{"PT_NO", "a"}, {"EAST", "4"}});
  Open(std::move(table));
  PointRecord record{};
  EXPECT_EQ(point_read("a", &record), 1);
  EXPECT_EQ(record.east, 3);

  EXPECT_EQ(point_count(), 4);
  double east = -1, north = -1, elev = -1;
  char number[16] = "untouched";
  EXPECT_EQ(point_read_at(1, &east, &north, &elev, number, sizeof number), 0);
  EXPECT_EQ(point_read_at(5, &east, &north, &elev, number, sizeof number), 0);
  EXPECT_STREQ(number, "untouched");
  EXPECT_EQ(east, -1);
  EXPECT_EQ(point_read_at(4, &east, &north, &elev, number, sizeof number), 1);
  EXPECT_STREQ(number, "a");
  EXPECT_EQ(east, 4);
}

TEST_F(PointTable, LeavesAllAloneWhereThePointIsNotThere) {
  for (const bool with_table : {true, false}) {
    Open(TableFile(support::PointColumns()));
    if (!with_table) project_.reset();
    columns_bind();
    PointRecord record = Scribbled();
    const PointRecord before = record;
    EXPECT_EQ(point_read("1", &record), -1);
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
    record = Filled();
    point_write("1", &record);
    point_remove("1");
    double east = 7, north = 7;
    char number[16] = "untouched";
    EXPECT_EQ(point_find_by_gid("", number, &east, &north, sizeof number), 0);
    EXPECT_STREQ(number, "untouched");
    EXPECT_EQ(point_count(), 0);
  }
}

TEST_F(PointTable, CutsOrderNumbersWhenItWrites) {
  Open({{{"PT_NO", "1"}}});
  PointRecord record = Filled();
  put(record.auftrag, "123456789012345678901234567890123456789012345");
  put(record.antragn, "1234567890123456789012345678901234567890");
  point_write("1", &record);
  EXPECT_EQ(project_->Field(1, "NE_AUFTRAG"), "123456789012345678901234567890123456789 ");
  EXPECT_EQ(project_->Field(1, "NE_ANTRAGN"), "123456789012345678901234567890123456789 ");
  EXPECT_STREQ(record.auftrag, "123456789012345678901234567890123456789") << "record and table agree";
}

TEST_F(PointTable, KeepsIdentifiersThatARecordDoesNotBring) {
  Open({{{"PT_NO", "1"}, {"GMLID", "old"}, {"NE_WEPO", "AX_PunktortAU|x|"}, {"NE_OBGID", "gone"}}});
  PointRecord record{};
  record.po = kPoTA;
  point_write("1", &record);
  EXPECT_EQ(project_->Field(1, "GMLID").substr(0, 4), "old ");
  EXPECT_EQ(project_->Field(1, "NE_WEPO").substr(0, 17), "AX_PunktortAU|x| ");
  EXPECT_EQ(project_->Field(1, "NE_OBGID"), std::string(20, ' '));
}

TEST_F(PointTable, RemovesThreeColumnsAlone) {
  Open({{{"PT_NO", "1"}}, {{"PT_NO", "2"}}});
  PointRecord record = Filled();
  point_write("2", &record);
  std::map<std::string, std::string> before;
  for (const auto& column : support::PointColumns()) before[column.name] = project_->Field(2, column.name);
  point_remove("2");
  before["NE_PO"] = " 0";
  before["NE_ANTRAGN"] = before["NE_AUFTRAG"] = std::string(40, ' ');
  for (const auto& column : support::PointColumns()) {
    EXPECT_EQ(project_->Field(2, column.name), before[column.name]) << column.name;
  }
  EXPECT_EQ(point_read("2", &record), 1);
}

TEST_F(PointTable, TrimsTextsAndReportsWhatDoesNotFit) {
  struct Case {
    const char* name;
    std::string stored;
    std::string read;
    std::size_t reports;
  };
  const Case kCases[] = {
      {"blanks", "", "", 0},
      {"padding in front, blanks within", "  A  B", "A  B", 0},
      {"first byte above 0x7F", "\xC4pfel", "", 0},
      {"such a byte further on", "A\xC4", "A\xC4", 0},
      {"79 characters", std::string(79, 'w'), std::string(79, 'w'), 0},
      {"80 characters", std::string(80, 'w'), std::string(79, 'w'), 1},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    Open({{{"PT_NO", "1"}, {"NE_PO", "1"}, {"NE_WEPO", c.stored}}});
    overflows_.texts().clear();
    PointRecord record{};
    EXPECT_EQ(point_read("1", &record), 0);
    EXPECT_EQ(record.wepo, c.read);
    EXPECT_EQ(overflows_.texts().size(), c.reports);
  }
}

TEST_F(PointTable, ReadsAnyNumberAsAnInteger) {
  std::vector<support::TableColumn> columns = support::HostColumns();
  for (const char* name : {"NE_PO", "NE_ABM", "NE_BZA", "NE_ZST", "NE_KST", "NE_HIN"}) {
    columns.push_back({name, 'N', 20, 2});
  }
  TableFile table(columns);
  table.Add({{"PT_NO", "1"},
             {"NE_PO", "1.99"},
             {"NE_ABM", "-1.99"},
             {"NE_BZA", "99999999999.00"},
             {"NE_ZST", "-99999999999.00"},
             {"NE_KST", "*******"},
             {"NE_HIN", "nan"}});
  Open(std::move(table));
  PointRecord record{};
  EXPECT_EQ(point_read("1", &record), 0);
  EXPECT_EQ(record.po, 1);
  EXPECT_EQ(record.abm, -1);
  EXPECT_EQ(record.bza, std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(record.zst, std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(record.kst, 0);
  EXPECT_EQ(record.hin, 0);
  EXPECT_STREQ(record.gmlid, "") << "a column that the table lacks";
}

TEST_F(PointTable, FindsTheFirstPointOfAnIdentifier) {
  TableFile table(support::PointColumns());
  table.Add({{"PT_NO", "0"}, {"GMLID", "DETH01"}}, /*deleted=*/true);
  table.Add({{"PT_NO", "1"}, {"GMLID", "DETH01"}});
  table.Add({{"PT_NO", "2"}, {"GMLID", "DETH01"}});
  table.Add({{"PT_NO", "3"}, {"GMLID", "DE TH 03"}});
  table.Add({{"PT_NO", "4"}, {"GMLID", "DETH04\xE4zzz"}});
  table.Add({{"PT_NO", "5"}, {"GMLID", ""}, {"EAST", "5.5"}, {"NORTH", "6.5"}});
  Open(std::move(table));
  const std::pair<const char*, const char*> kCases[] = {
      {"DETH01", "1"}, {"deth01", ""}, {"DETH0", ""}, {"DETH03", "3"}, {"DE TH 03", ""}, {"DETH04", "4"}, {"", "5"},
  };
  for (const auto& [identifier, expected] : kCases) {
    char number[16] = "";
    double east = 0, north = 0;
    EXPECT_EQ(point_find_by_gid(identifier, number, &east, &north, sizeof number), *expected != '\0' ? 1 : 0);
    EXPECT_STREQ(number, expected) << identifier;
    if (*identifier == '\0') {
      EXPECT_EQ(east, 5.5);
      EXPECT_EQ(north, 6.5);
    }
  }
}

TEST_F(PointTable, WalksTheOrderNumbersOfReadableRecords) {
  std::vector<support::TableColumn> columns = support::PointColumns();
  for (support::TableColumn& column : columns) {
    if (column.name == "NE_ANTRAGN") column.width = 43;
  }
  TableFile table(columns);
  table.Add({{"PT_NO", "0"}, {"NE_AUFTRAG", "A"}, {"NE_ANTRAGN", "B"}}, /*deleted=*/true);
  table.Add({{"PT_NO", "1"}, {"NE_AUFTRAG", "  A 1 "}, {"NE_ANTRAGN", std::string(43, 'b')}, {"EAST", "1.5"}});
  table.Add({{"PT_NO", "2"}, {"NE_AUFTRAG", "\xC4"}, {"NORTH", "2.5"}});
  Open(std::move(table));
  std::string seen;
  const auto walk = [&seen] {
    point_walk_orders([&seen](const OrderRow& row) {
      seen += std::string(row.point_number) + "/" + row.auftrag + "/" + row.antragn + "/" + std::to_string(row.east) +
              "/" + std::to_string(row.north) + "\n";
    });
  };
  walk();
  EXPECT_EQ(seen, "1/A 1/" + std::string(43, 'b') + "/1.500000/0.000000\n2///0.000000/2.500000\n");
  EXPECT_TRUE(overflows_.texts().empty());
  project_.reset();
  walk();
  EXPECT_EQ(seen.size(), std::string("1/A 1//1.500000/0.000000\n2///0.000000/2.500000\n").size() + 43);
}

}  // namespace
}  // namespace pktaus
