#include "korvo/dbase/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>

#include "tests/support/faulty_files.h"
#include "tests/support/table_file.h"

namespace {

using korvo::Table;

TEST(NumberText, IsReadWithoutTheLocaleAndNeverHalf) {
  std::string seen;
  for (const char* text : {"    12.5000", "12.5    ", "  -2", " +7", "1e3", "********", "   ", "12,5", "1 2", "nan",
                           "inf", "+-5", "1e999", "0x10"}) {
    seen += std::to_string(static_cast<int>(10 * korvo::ParseNumber(text))) + " ";
  }
  EXPECT_EQ(seen, "125 125 -20 70 10000 0 0 0 0 0 0 0 0 0 ");
  EXPECT_EQ(korvo::ParseNumber(std::string_view("\0\0 5\0", 5)), 5);
  for (const char* text : {"0.3", ".3", "3.", ".", "1.2.3", "5651001.123", "0000000000.0007", "0.1234567890123",
                           "99999999999.999", "123456789012345", "9007199254740993", "0.30000000000000004"})
    EXPECT_EQ(korvo::ParseNumber(text), std::strcmp(text, "1.2.3") == 0 ? 0 : std::strtod(text, nullptr)) << text;
}

TEST(NumberText, FitsItsColumnOrIsRefused) {
  const struct {
    double value;
    int width, decimals;
    const char* text;  // empty: refused
  } kNumbers[] = {
      {-1, 2, 0, "-1"},
      {-10, 2, 0, ""},
      {99999999.5, 8, 0, ""},
      {1.5, 14, 4, "        1.5000"},
      {-0.04, 4, 1, " 0.0"},
      {1, 0, 0, ""},
      {std::numeric_limits<double>::quiet_NaN(), 8, 0, ""},
  };
  for (const auto& c : kNumbers) {
    std::string text;
    EXPECT_EQ(korvo::FormatNumber(c.value, c.width, c.decimals, &text), *c.text != '\0');
    EXPECT_EQ(text, c.text);
  }
}

std::string TextOf(Table* table, int column) {
  std::string text = "other";
  table->Text(column, &text);
  return text;
}

constexpr std::size_t kHeader = 33 + 4 * 32;
constexpr std::size_t kRecord = 1 + 6 + 8 + 4 + 2;

/// A table of two points with a deleted one between them.
class TableTest : public testing::Test {
 protected:
  TableTest() {
    file.Add({{"PT_NO", "A1"}, {"EAST", "1.25"}, {"PKN_ABM_BZA", "x,"}, {"ne_po", "1"}});
    file.Add({{"PT_NO", "B2"}, {"EAST", "2.50"}}, true);
    file.Add({{"PT_NO", "C3"}, {"EAST", "3.75"}, {"PKN_ABM_BZA", "y,"}});
    whole = file.Bytes();
  }
  bool Open(const std::string& bytes, bool writable = true) {
    why.clear();
    const bool opened = table.Open(folder.Write("t.dbf", bytes), writable, &why);
    EXPECT_EQ(opened, why.empty()) << why;
    return opened;
  }
  std::string OnDisk() const { return support::BytesOf(folder.File("t.dbf")); }

  support::TempFolder folder;
  support::TableFile file{{{"PT_NO", 'C', 6}, {"EAST", 'N', 8, 2}, {"PKN_ABM_BZA", 'C', 4}, {"ne_po", 'N', 2}}};
  std::string whole;
  Table table;
  std::string why;
  std::string_view record;
};

TEST_F(TableTest, FindsColumnsByTenCharactersAndHeedsCase) {
  whole.insert(kHeader, 263, '\0');  // room behind the descriptors
  whole.replace(8, 2, std::string{static_cast<char>((kHeader + 263) & 0xFF), static_cast<char>((kHeader + 263) >> 8)});
  ASSERT_TRUE(Open(whole, false));
  const std::pair<const char*, int> kColumns[] = {
      {"EAST", 1}, {"PKN_ABM_BZ", 2}, {"PKN_ABM_BZX", 2}, {"NE_PO", -1}, {"EAS", -1}};
  for (const auto& [name, column] : kColumns) EXPECT_EQ(table.Find(name), column) << name;
  table.Go(1);
  EXPECT_EQ(TextOf(&table, 0), "A1    ");
  EXPECT_EQ(table.Number(1), 1.25);
  for (const int nowhere : {-1, 99})
    EXPECT_EQ(TextOf(&table, nowhere) + std::to_string(table.Number(nowhere)), "0.000000");
  table.Go(4);
  EXPECT_EQ(TextOf(&table, 0), "      ");
}

TEST_F(TableTest, MakesSenseOfDamagedFilesOrRefuses) {
  const auto set = [](std::size_t at, std::string_view with) {
    return [=](std::string& bytes) { bytes.replace(at, with.size(), with); };
  };
  const auto cut = [](std::size_t size) { return [=](std::string& bytes) { bytes.resize(size); }; };
  const struct {
    const char* name;
    std::function<void(std::string&)> damage;
    const char* answers;  // of each record: r read, d deleted, f failed; empty: not opened
  } cases[] = {
      {"whole", cut(kHeader + 3 * kRecord + 1), "rdr"},
      {"no end mark", cut(kHeader + 3 * kRecord), "rdr"},
      {"last record cut", cut(kHeader + 3 * kRecord - 1), "rd"},
      {"count says millions", set(4, "\xff\xff\xff\xff"), "rdr"},
      {"behind the end mark", [](std::string& bytes) { bytes += std::string(100, ' '); }, "rdr"},
      {"bad flag inside", set(kHeader + kRecord, "x"), "rfr"},
      {"longer records", set(10, "\x19"), ""},
      {"no end of descriptors", set(kHeader - 1, " "), ""},
      {"header cut", cut(40), ""},
      {"empty", cut(0), ""},
      {"zeros", [](std::string& bytes) { bytes.assign(70000, '\0'); }, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::string bytes = whole;
    c.damage(bytes);
    EXPECT_EQ(Open(bytes), *c.answers != '\0');
    std::string answers;
    for (std::int32_t i = 1; i <= table.count(); ++i) {
      const Table::Got got = table.Read(i, &record);
      answers += got == Table::Got::kRead ? 'r' : got == Table::Got::kDeleted ? 'd' : 'f';
    }
    EXPECT_EQ(answers, c.answers);
    table.Close();
    EXPECT_EQ(OnDisk(), bytes);
  }
}

TEST_F(TableTest, AWriteChangesItsRecordAndNothingElse) {
  ASSERT_TRUE(Open(whole));
  ASSERT_EQ(table.Read(3, &record), Table::Got::kRead);  // fills the block that the write has to keep true
  table.Go(3);
  table.SetText(0, "LONGER THAN IT");
  table.SetText(2, "z");
  table.SetNumber(1, 7.5);
  table.SetNumber(-1, 1);
  table.SetText(99, "swallowed");
  ASSERT_TRUE(table.Write(3, &why)) << why;
  EXPECT_EQ(OnDisk(), whole.replace(kHeader + 2 * kRecord, kRecord, " LONGER    7.50z     "));
  ASSERT_EQ(table.Read(3, &record), Table::Got::kRead);
  EXPECT_EQ(table.Field(record, 0), "LONGER");
}

TEST_F(TableTest, AWriteRefusesWhatWouldStoreSomethingFalse) {
  const struct {
    const char* name;
    bool writable;
    std::int32_t go, write;
    double value;
  } cases[] = {{"value wider than its column", true, 1, 1, 100},
               {"read only", false, 1, 1, 1},
               {"record 0", true, 1, 0, 1},
               {"behind the end", true, 1, 4, 1},
               {"no current record", true, 9, 1, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(Open(whole, c.writable));
    table.Go(c.go);
    table.SetNumber(3, c.value);
    table.SetText(0, "new");
    EXPECT_FALSE(table.Write(c.write, &why));
    EXPECT_FALSE(why.empty());
    table.Go(1);  // the next record starts without the fault of this one
    EXPECT_EQ(table.Write(1, &why), c.writable);
    EXPECT_EQ(OnDisk(), whole);
  }
}

TEST_F(TableTest, FaultsAreToldAndLeaveTheTableReadable) {
  std::string failing = "WriteAt";
  support::FaultyFiles files([&](int, const std::string& name) { return name == failing ? EIO : 0; });
  ASSERT_TRUE(Open(whole));
  table.Go(1);
  table.SetText(0, "new");
  EXPECT_FALSE(table.Write(1, &why));
  EXPECT_FALSE(why.empty());
  failing = "Sync";
  EXPECT_FALSE(table.Sync());
  failing = "ReadAt";
  EXPECT_EQ(table.Read(1, &record), Table::Got::kFailed);
  failing.clear();
  ASSERT_EQ(table.Read(1, &record), Table::Got::kRead);
  EXPECT_EQ(table.Field(record, 0), "A1    ");  // what stands on disk, not what was meant to
}

TEST_F(TableTest, AWalkReadsTheFileInBlocks) {
  constexpr int kRecords = 50'000;
  for (int i = 4; i <= kRecords; ++i) file.Add({{"PT_NO", std::to_string(i)}});
  support::FaultyFiles files([](int, const std::string&) { return 0; });
  ASSERT_TRUE(Open(file.Bytes()));
  for (std::int32_t i = 4; i <= kRecords; ++i) {
    ASSERT_EQ(table.Read(i, &record), Table::Got::kRead);
    ASSERT_EQ(korvo::ParseNumber(table.Field(record, 0)), i);
  }
  EXPECT_LE(files.calls(), 10 + kRecord * kRecords / (256 * 1024));
}

}  // namespace
