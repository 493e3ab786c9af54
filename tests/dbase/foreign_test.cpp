// What another program does to a table while it is open here.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "korvo/dbase/table.h"
#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using korvo::Table;
using support::BytesOf;

std::string Bytes(int records, std::string_view first = "1") {
  support::TableFile table({{"PT_NO", 'C', 15, 0}, {"REM", 'C', 10, 0}});
  for (int i = 1; i <= records; ++i) table.Add({{"PT_NO", i == 1 ? std::string(first) : std::to_string(i)}});
  return table.Bytes();
}

TEST(Table, WritesOverNothingThatAnotherProgramDid) {
  const auto in_place = [](const fs::path& path, const std::string& bytes) {
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << bytes;
  };
  const struct {
    const char* name;
    std::function<void(const fs::path&)> act;
    const char* said;
    bool goes_on;  // the next attempt works on what stands there
  } kActs[] = {
      {"nothing", [](const fs::path&) {}, "", true},
      {"a field edited", [&](const fs::path& path) { in_place(path, Bytes(3, "neu")); }, "wird neu gelesen", true},
      {"a field edited, time put back",
       [&](const fs::path& path) {
         const auto time = fs::last_write_time(path);
         in_place(path, Bytes(3, "neu"));
         fs::last_write_time(path, time);
       },
       "wird neu gelesen", true},
      {"the time alone", [](const fs::path& path) { fs::last_write_time(path, {}); }, "wird neu gelesen", true},
      {"a record more", [&](const fs::path& path) { in_place(path, Bytes(4)); }, "vermehrt", false},
      {"a record less", [&](const fs::path& path) { fs::resize_file(path, Bytes(2).size()); }, "vermindert", false},
      {"another file by rename",
       [](const fs::path& path) {
         std::ofstream(path.string() + "x", std::ios::binary) << Bytes(3, "neu");
         fs::rename(path.string() + "x", path);
       },
       "ersetzt", false},
      {"the file gone", [](const fs::path& path) { fs::remove(path); }, "nicht mehr an ihrem Platz", false},
      {"the folder gone", [](const fs::path& path) { fs::remove_all(path.parent_path()); }, "nicht mehr an", false},
  };
  for (const auto& act : kActs) {
    const support::TempFolder folder;
    fs::create_directory(folder.File("p"));
    const std::string path = folder.Write("p/a.dbf", Bytes(3));
    Table table;
    std::string why, text;
    ASSERT_TRUE(table.Open(path, true, &why));
    table.Go(1);
    table.Text(0, &text);
    act.act(path);
    const std::string before = BytesOf(path);
    table.SetText(1, "unser");
    EXPECT_EQ(table.Write(1, &why), *act.said == '\0') << act.name;
    EXPECT_NE(why.find(act.said), std::string::npos) << act.name << why;
    EXPECT_TRUE(*act.said == '\0' || BytesOf(path) == before) << act.name;
    EXPECT_EQ(table.stale(), !act.goes_on) << act.name;
    table.Go(1);
    table.SetText(1, "unser");
    EXPECT_EQ(table.Write(1, &why), act.goes_on) << act.name;
    EXPECT_EQ(BytesOf(path).find("unser") != std::string::npos, act.goes_on) << act.name;
    EXPECT_TRUE(!act.goes_on || BytesOf(path).find("neu") == before.find("neu")) << act.name;
  }
}

TEST(Table, IsLockedByWhateverName) {
  const support::TempFolder folder;
  const std::string path = folder.Write("a.dbf", Bytes(1)), link = folder.File("b.dbf");
  fs::create_hard_link(path, link);
  Table first, second;
  std::string why;
  ASSERT_TRUE(first.Open(path, true, &why) && second.Open(link, true, &why));
  EXPECT_EQ(first.Lock(), Table::Locked::kYes);
  EXPECT_EQ(second.Lock(), Table::Locked::kByAnother);
  first.Close();
  EXPECT_EQ(second.Lock(), Table::Locked::kYes);
}

}  // namespace
