#include "korvo/dbase/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/faulty_files.h"
#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

using korvo::Table;

TEST(NumberText, IsReadWithoutTheLocaleAndNeverHalf) {
  const struct {
    const char* text;
    double value;
  } cases[] = {
      {"      12.5000", 12.5},
      {"12.5    ", 12.5},
      {"  -2", -2},
      {" +7", 7},
      {"1e3", 1000},
      {"32649902.6890", 32649902.689},
      {"        ", 0},
      {"", 0},
      {"********", 0},
      {"12,5", 0},
      {"1 2", 0},
      {"nan", 0},
      {"inf", 0},
      {"+-5", 0},
      {"1e999", 0},
      {"0x10", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(korvo::ParseNumber(c.text), c.value) << c.text;
  EXPECT_EQ(korvo::ParseNumber(std::string_view("\0\0 5\0", 5)), 5);
}

TEST(NumberText, FitsItsColumnOrIsRefused) {
  const struct {
    double value;
    int width;
    int decimals;
    const char* text;  // null: refused
  } cases[] = {
      {9500, 8, 0, "    9500"},       {-1, 2, 0, "-1"},
      {-10, 2, 0, nullptr},           {99999999, 8, 0, "99999999"},
      {100000000, 8, 0, nullptr},     {99999999.5, 8, 0, nullptr},
      {1.5, 14, 4, "        1.5000"}, {-0.0, 4, 1, " 0.0"},
      {-0.04, 4, 1, " 0.0"},          {1, 4, 255, nullptr},
      {1e300, 8, 0, nullptr},         {1, 0, 0, nullptr},
      {std::nan(""), 8, 0, nullptr},  {std::numeric_limits<double>::infinity(), 8, 0, nullptr},
  };
  for (const auto& c : cases) {
    std::string text = "untouched";
    EXPECT_EQ(korvo::FormatNumber(c.value, c.width, c.decimals, &text), c.text != nullptr) << c.value;
    EXPECT_EQ(text, c.text != nullptr ? c.text : "untouched");
  }
}

support::TableFile ThreePoints() {
  support::TableFile table({{"PT_NO", 'C', 6}, {"EAST", 'N', 8, 2}, {"PKN_ABM_BZA", 'C', 4}, {"ne_po", 'N', 2}});
  table.Add({{"PT_NO", "A1"}, {"EAST", "1.25"}, {"PKN_ABM_BZA", "x,"}, {"ne_po", "1"}});
  table.Add({{"PT_NO", "B2"}, {"EAST", "2.50"}}, true);
  table.Add({{"PT_NO", "C3"}, {"EAST", "3.75"}, {"PKN_ABM_BZA", "y,"}});
  return table;
}
constexpr std::size_t kHeader = 33 + 4 * 32;
constexpr std::size_t kRecord = 1 + 6 + 8 + 4 + 2;

TEST(TableRead, FindsColumnsByTenCharactersAndHeedsCase) {
  const support::TempFolder folder;
  Table table;
  std::string why;
  ASSERT_TRUE(table.Open(folder.Write("t.dbf", ThreePoints().Bytes()), false, &why)) << why;
  EXPECT_EQ(table.Find("EAST"), 1);
  EXPECT_EQ(table.Find("PKN_ABM_BZ"), 2);
  EXPECT_EQ(table.Find("PKN_ABM_BZA"), 2);
  EXPECT_EQ(table.Find("PKN_ABM_BZX"), 2);
  EXPECT_EQ(table.Find("NE_PO"), -1);
  EXPECT_EQ(table.Find("EAS"), -1);
  table.Go(1);
  EXPECT_EQ(table.Text(0), "A1    ");
  EXPECT_EQ(table.Number(1), 1.25);
  EXPECT_EQ(table.Text(-1), "");
  EXPECT_EQ(table.Text(99), "");
  EXPECT_EQ(table.Number(-1), 0);
  table.Go(4);
  EXPECT_EQ(table.Text(0), "      ");
}

// What is damaged, how many records are left (-1: not opened), and what each of them answers.
TEST(TableRead, MakesSenseOfDamagedFilesOrRefuses) {
  using Bytes = std::string;
  const auto set = [](std::size_t at, std::string_view with) {
    return [=](Bytes& bytes) { bytes.replace(at, with.size(), with); };
  };
  const auto cut = [](std::size_t size) { return [=](Bytes& bytes) { bytes.resize(size); }; };
  const std::string_view zero("\0\0", 2);
  const struct {
    const char* name;
    std::function<void(Bytes&)> damage;
    int records;
    const char* answers;  // r read, d deleted, f failed
  } cases[] = {
      {"whole", [](Bytes&) {}, 3, "rdr"},
      {"no end mark", cut(kHeader + 3 * kRecord), 3, "rdr"},
      {"last record cut", cut(kHeader + 3 * kRecord - 1), 2, "rd"},
      {"count says less", set(4, std::string_view("\1\0", 2)), 3, "rdr"},
      {"count says more", set(4, std::string_view("\x09\0", 2)), 3, "rdr"},
      {"count says millions", set(4, "\xff\xff\xff\xff"), 3, "rdr"},
      {"behind the end mark", [](Bytes& bytes) { bytes += std::string(100, ' '); }, 3, "rdr"},
      {"bad flag inside", set(kHeader + kRecord, "x"), 3, "rfr"},
      {"longer records", [](Bytes& b) { b[10] = static_cast<char>(kRecord + 4); }, -1, ""},
      {"shorter records", set(10, "\x05"), -1, ""},
      {"no length of records", set(10, zero), -1, ""},
      {"no end of descriptors", set(kHeader - 1, zero.substr(0, 1)), -1, ""},
      {"header cut", cut(40), -1, ""},
      {"head cut", cut(31), -1, ""},
      {"empty", cut(0), -1, ""},
      {"zeros", [](Bytes& bytes) { bytes.assign(70000, '\0'); }, -1, ""},
  };
  const support::TempFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Bytes bytes = ThreePoints().Bytes();
    c.damage(bytes);
    Table table;
    std::string why;
    EXPECT_EQ(table.Open(folder.Write("t.dbf", bytes), true, &why), c.records >= 0) << why;
    EXPECT_EQ(table.IsOpen(), c.records >= 0);
    EXPECT_EQ(why.empty(), c.records >= 0);
    std::string answers;
    for (std::int32_t i = 1; i <= table.count(); ++i) {
      std::string_view record;
      const Table::Got got = table.Read(i, &record);
      answers += got == Table::Got::kRead ? 'r' : got == Table::Got::kDeleted ? 'd' : 'f';
    }
    EXPECT_EQ(table.count(), std::max(c.records, 0));
    EXPECT_EQ(answers, c.answers);
    table.Close();
    EXPECT_EQ(support::BytesOf(folder.File("t.dbf")), bytes);
  }
}

TEST(TableRead, RoomBehindTheDescriptorsIsPassed) {
  const support::TempFolder folder;
  std::string bytes = ThreePoints().Bytes();
  bytes.insert(kHeader, 263, '\0');
  bytes[8] = static_cast<char>((kHeader + 263) & 0xFF);
  bytes[9] = static_cast<char>((kHeader + 263) >> 8);
  Table table;
  std::string why;
  ASSERT_TRUE(table.Open(folder.Write("t.dbf", bytes), false, &why)) << why;
  ASSERT_EQ(table.count(), 3);
  table.Go(3);
  EXPECT_EQ(table.Text(0), "C3    ");
}

TEST(TableWrite, ChangesItsRecordAndNothingElse) {
  const support::TempFolder folder;
  const std::string path = folder.Write("t.dbf", ThreePoints().Bytes());
  Table table;
  std::string why;
  ASSERT_TRUE(table.Open(path, true, &why)) << why;
  std::string_view before;
  ASSERT_EQ(table.Read(3, &before), Table::Got::kRead);  // fills the block that the write has to keep true
  table.Go(3);
  table.SetText(0, "LONGER THAN IT");
  table.SetText(2, "z");
  table.SetNumber(1, 7.5);
  table.SetNumber(-1, 1);
  table.SetText(99, "swallowed");
  ASSERT_TRUE(table.Write(3, &why)) << why;
  std::string expected = ThreePoints().Bytes();
  expected.replace(kHeader + 2 * kRecord, kRecord, " LONGER    7.50z     ");
  EXPECT_EQ(support::BytesOf(path), expected);
  std::string_view after;
  ASSERT_EQ(table.Read(3, &after), Table::Got::kRead);
  EXPECT_EQ(table.Field(after, 0), "LONGER");
}

TEST(TableWrite, RefusesWhatWouldStoreSomethingFalse) {
  const support::TempFolder folder;
  const std::string path = folder.Write("t.dbf", ThreePoints().Bytes());
  const struct {
    const char* name;
    bool writable;
    std::int32_t go;
    double value;
    std::int32_t write;
  } cases[] = {
      {"value wider than its column", true, 1, 100, 1},
      {"read only", false, 1, 1, 1},
      {"record 0", true, 1, 1, 0},
      {"behind the end", true, 1, 1, 4},
      {"no current record", true, 9, 1, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Table table;
    std::string why;
    ASSERT_TRUE(table.Open(path, c.writable, &why)) << why;
    table.Go(c.go);
    table.SetNumber(3, c.value);
    table.SetText(0, "new");
    EXPECT_FALSE(table.Write(c.write, &why));
    EXPECT_FALSE(why.empty());
    table.Go(1);  // the next record starts without the fault of this one
    EXPECT_EQ(table.Write(1, &why), c.writable);
    EXPECT_EQ(support::BytesOf(path), ThreePoints().Bytes());
  }
}

TEST(TableFaults, AreToldAndLeaveTheTableReadable) {
  const support::TempFolder folder;
  bool fail_writes = false;
  bool fail_reads = false;
  const support::FaultyFiles files([&](int, const std::string& name) {
    const bool writes = name == "WriteAt" || name == "Sync";
    return (fail_writes && writes) || (fail_reads && name == "ReadAt") ? EIO : 0;
  });
  Table table;
  std::string why;
  ASSERT_TRUE(table.Open(folder.Write("t.dbf", ThreePoints().Bytes()), true, &why)) << why;
  table.Go(1);
  table.SetText(0, "new");
  fail_writes = true;
  EXPECT_FALSE(table.Write(1, &why));
  EXPECT_FALSE(why.empty());
  EXPECT_FALSE(table.Sync());
  fail_reads = true;
  std::string_view record;
  EXPECT_EQ(table.Read(1, &record), Table::Got::kFailed);
  EXPECT_TRUE(record.empty());
  fail_reads = false;
  ASSERT_EQ(table.Read(1, &record), Table::Got::kRead);
  EXPECT_EQ(table.Field(record, 0), "A1    ");  // what stands on disk, not what was meant to
}

TEST(TableRead, AWalkReadsTheFileInBlocks) {
  const support::TempFolder folder;
  support::TableFile file({{"PT_NO", 'C', 99}});
  constexpr int kRecords = 20000;
  for (int i = 0; i < kRecords; ++i) file.Add({{"PT_NO", std::to_string(i)}});
  const std::string path = folder.Write("t.dbf", file.Bytes());
  int reads = 0;
  const support::FaultyFiles files([&](int, const std::string& name) {
    reads += name == "ReadAt" ? 1 : 0;
    return 0;
  });
  Table table;
  std::string why;
  ASSERT_TRUE(table.Open(path, false, &why)) << why;
  for (std::int32_t i = 1; i <= kRecords; ++i) {
    std::string_view record;
    ASSERT_EQ(table.Read(i, &record), Table::Got::kRead);
    ASSERT_EQ(korvo::ParseNumber(table.Field(record, 0)), i - 1);
  }
  EXPECT_LE(reads, 2 + 100 * kRecords / (256 * 1024) + 2);
}

}  // namespace
