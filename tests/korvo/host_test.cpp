// The host's operations as a plug-in calls them, and the projects behind them.
#include "entry/host/host.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "korvo/host/points.h"
#include "korvo/host/project.h"
#include "tests/support/open_project.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

support::TableFile OnePoint(const char* number = "4711") {
  support::TableFile table(support::HostColumns());
  table.Add({{"PT_NO", number}, {"EAST", "1.5000"}});
  return table;
}

TEST(HostTexts, PaddingGoesAtBothEnds) {
  const struct {
    const char* before;
    const char* after;
  } cases[] = {{"  a b  ", "a b"}, {"ab", "ab"}, {"   ", ""}, {"", ""}, {" a", "a"}, {"a ", "a"}};
  for (const auto& c : cases) {
    char text[20];
    std::strcpy(text, c.before);
    strcdel(text, ' ', 1);
    EXPECT_STREQ(text, c.after);
  }
}

TEST(HostTexts, DerivedPathsAreWholeOrEmpty) {
  const std::string stem(65, 'a');
  const struct {
    std::string path;
    const char* extension;
    std::string derived;
  } cases[] = {
      {"/p/punkte.dbf", "nxk", "/p/punkte.nxk"},
      {"/p.q/punkte", "nxk", "/p.q/punkte.nxk"},
      {"/p/a.b.dbf", "nxk", "/p/a.b.nxk"},
      {stem + ".dbf", "nxk", stem + ".nxk"},
      {stem + "b.dbf", "nxk", ""},
      {std::string(300, 'a') + ".dbf", "nxk", ""},
      {"/p/punkte.dbf", "", ""},
      {"", "nxk", ""},
  };
  for (const auto& c : cases) {
    char derived[70];
    std::memset(derived, '?', sizeof derived);
    EXPECT_EQ(ext_change(derived, c.path.c_str(), c.extension), derived);
    EXPECT_EQ(derived, c.derived);
  }
}

TEST(HostTexts, NoExtensionIsThatOfATable) {
  for (const int number : {16, 9, 11, 51, 34, 10, 38, 35, 36, 37, 48, 47}) {
    const std::string extension = ext(number);
    EXPECT_EQ(extension.size(), 3u);
    EXPECT_EQ(extension.substr(0, 2), "nx");
  }
  EXPECT_STREQ(ext(0), "");
}

TEST(HostTables, EveryOperationSurvivesNullAndClosedTables) {
  support::ScriptedDesktop desktop;
  const support::OpenProject project(OnePoint());
  HostTable* points = V2_VAR->points;
  ASSERT_NE(points, nullptr);
  EXPECT_EQ(points->path, project.table_path());
  d4select(points->data);
  void* data = points->data;
  void* pt_no = f4ref("PT_NO");
  d4go(1);
  ASSERT_EQ(std::string(f4str(pt_no)), "4711           ");

  const auto read = [&](HostTable* table) {
    HostPoint point{};
    std::int32_t error = 0;
    vm_dbk_read(table, &point, 1, &error);
    return error;
  };
  EXPECT_EQ(read(points), 0);
  EXPECT_NE(read(nullptr), 0);
  EXPECT_NE(read(V2_VAR->dba), 0);

  vm_dbk_close(points);
  vm_dbk_close(points);
  EXPECT_NE(read(points), 0);
  for (void* handle : {data, points->data, static_cast<void*>(nullptr)}) {
    d4select(handle);
    EXPECT_EQ(d4reccount(), 0);
    EXPECT_EQ(f4ref("PT_NO"), nullptr);
    d4go(1);
    db_write(1);
  }
  // A reference of the table before is not one of the table that is open now.
  vm_dbk_open(points, 1, 1);
  EXPECT_STREQ(f4str(pt_no), "");
  EXPECT_EQ(f4double(pt_no), 0);
  f4r_str(pt_no, "x");
  f4r_double(pt_no, 1);
  EXPECT_EQ(read(points), 0);

  // A host without these tables gets the same calls.
  vm_dba_open(nullptr, 1), vm_dba_nxh_select(nullptr), vm_dba_close(nullptr);
  vm_dbv_open(nullptr, 1, 1), vm_dbv_nxv_select(nullptr), vm_dbv_nxw_select(nullptr), vm_dbv_close(nullptr);
  vm_dbh_open(nullptr, 1, 1), vm_dbh_nxi_select(nullptr), vm_dbh_nxo_select(nullptr), vm_dbh_close(nullptr);
  vm_dbk_open(nullptr, 1, 1), vm_dbk_nxk_select(nullptr), vm_dbk_nxs_select(nullptr), vm_dbk_close(nullptr);
  vm_dbk_read(points, nullptr, 1, nullptr);
  vm_koor_clear(nullptr), db_i_select(nullptr), strcdel(nullptr, ' ', 1), f4ref(nullptr),
      _load_men(nullptr, nullptr, 30);
  EXPECT_EQ(get_menu_no(nullptr, 1, nullptr), 0);
  EXPECT_NE(v2_point_ask(nullptr, nullptr, nullptr, 0), 0);
  EXPECT_TRUE(desktop.boxes.empty());
}

TEST(HostTables, AWriteThatFailsIsTold) {
  support::ScriptedDesktop desktop;
  const support::OpenProject project(OnePoint());
  d4select(V2_VAR->points->data);
  d4go(1);
  f4r_double(f4ref("ELEV"), 123456789);
  db_write(1);
  ASSERT_EQ(desktop.boxes.size(), 1u);
  EXPECT_NE(desktop.boxes[0].text.find("ELEV"), std::string::npos);
  EXPECT_EQ(project.Field(1, "ELEV"), "          ");
}

TEST(HostTables, APointNumberIsGivenWholeOrNotAtAll) {
  const struct {
    const char* number;
    const char* given;  // null: no such point
  } cases[] = {{"123456789012345", "123456789012345"}, {"1234567890123456", nullptr}, {"  7  ", "  7"}, {"", ""}};
  for (const auto& c : cases) {
    support::TableFile table({{"PT_NO", 'C', 20}});
    table.Add({{"PT_NO", c.number}});
    const support::OpenProject project(table);
    HostPoint point{};
    std::int32_t error = -1;
    vm_dbk_read(V2_VAR->points, &point, 1, &error);
    EXPECT_EQ(error == 0, c.given != nullptr) << c.number;
    if (c.given != nullptr) {
      EXPECT_STREQ(point.pt_no, c.given);
    }
  }
}

TEST(HostTables, CompanionsHaveHandlesAndDerivedFilesComeBack) {
  const support::TempFolder folder;
  folder.Write("punkte.dbf", OnePoint().Bytes());
  folder.Write("punkte.dba", OnePoint().Bytes());
  folder.Write("punkte.dbh", OnePoint().Bytes());
  ASSERT_TRUE(korvo::OpenProject(folder.path()).open);
  EXPECT_NE(V2_VAR->points, nullptr);
  ASSERT_NE(V2_VAR->dba, nullptr);
  EXPECT_EQ(V2_VAR->dba->path, folder.File("punkte.dba"));
  EXPECT_EQ(V2_VAR->dbv, nullptr);
  EXPECT_NE(V2_VAR->dbh, nullptr);
  EXPECT_TRUE(fs::remove(folder.File("punkte.nxk")));
  vm_dbk_open(V2_VAR->points, 1, 1);
  EXPECT_TRUE(fs::exists(folder.File("punkte.nxk")));
  korvo::CloseProject();
  EXPECT_EQ(V2_VAR->points, nullptr);
}

TEST(Project, FindsItsPointTableByRule) {
  support::TableFile other({{"NAME", 'C', 5}});
  const std::string points = OnePoint().Bytes();
  const std::string foreign = other.Bytes();
  struct File {
    const char* name;
    const std::string* bytes;
  };
  const struct {
    std::vector<File> files;
    const char* found;  // null: refused
  } cases[] = {
      {{}, nullptr},
      {{{"lage.dbf", &points}}, "lage.dbf"},
      {{{"lage.dbf", &foreign}}, "lage.dbf"},
      {{{"a.dbf", &foreign}, {"lage.DBF", &points}}, "lage.DBF"},
      {{{"a.dbf", &foreign}, {"b.dbf", &foreign}}, nullptr},
      {{{"a.dbf", &points}, {"b.dbf", &points}}, nullptr},
      {{{"a.dbf", &points}, {"PUNKTE.DBF", &foreign}}, "PUNKTE.DBF"},
      {{{"punkte.txt", &points}}, nullptr},
  };
  for (const auto& c : cases) {
    const support::TempFolder folder;
    for (const File& file : c.files) folder.Write(file.name, *file.bytes);
    std::string why;
    const auto found = korvo::FindPointTable(folder.path(), &why);
    EXPECT_EQ(found.has_value(), c.found != nullptr) << why;
    EXPECT_EQ(why.empty(), c.found != nullptr);
    if (found && c.found != nullptr) {
      EXPECT_EQ(*found, folder.File(c.found));
    }
  }
}

TEST(Project, PathsThatTheHostCannotHoldAreRefusedInWords) {
  const support::TempFolder folder;
  const auto open_in = [&](const std::string& name) {
    fs::create_directories(folder.File(name));
    folder.Write(name + "/punkte.dbf", OnePoint().Bytes());
    const korvo::OpenedProject opened = korvo::OpenProject(folder.File(name));
    korvo::CloseProject();
    EXPECT_EQ(opened.open, opened.refusal.empty());
    return opened;
  };
  const std::size_t room = 69 - folder.path().size() - std::strlen("//punkte.dbf");
  EXPECT_TRUE(open_in(std::string(room, 'a')).open);
  const korvo::OpenedProject refused = open_in(std::string(room + 1, 'a'));
  EXPECT_FALSE(refused.open);
  EXPECT_NE(refused.refusal.find("69"), std::string::npos) << refused.refusal;
  EXPECT_FALSE(open_in("\xE2\x88\x91").open);
  // Behind a short link the same project opens.
  fs::create_directory_symlink(folder.File(std::string(room + 1, 'a')), folder.File("kurz"));
  const korvo::OpenedProject linked = korvo::OpenProject(folder.File("kurz"));
  EXPECT_TRUE(linked.open) << linked.refusal;
  korvo::CloseProject();
}

TEST(Project, IsWorkedOnByOneAndFreeAgainAfterAKill) {
  const support::TempFolder folder;
  folder.Write("punkte.dbf", OnePoint().Bytes());
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const bool open = korvo::OpenProject(folder.path()).open && korvo::WhyOnlyLooking().empty();
    const char said = open ? 'y' : 'n';
    if (write(ready[1], &said, 1) != 1) _exit(1);
    for (;;) pause();
  }
  char said = 0;
  ASSERT_EQ(read(ready[0], &said, 1), 1);
  ASSERT_EQ(said, 'y');

  korvo::OpenedProject second = korvo::OpenProject(folder.path());
  EXPECT_TRUE(second.open) << second.refusal;
  EXPECT_NE(second.note.find("Prozess " + std::to_string(child)), std::string::npos) << second.note;
  EXPECT_EQ(korvo::PointRecords(), 1);
  HostPoint point{};
  EXPECT_TRUE(korvo::ReadPoint(1, &point));
  EXPECT_FALSE(korvo::WhyOnlyLooking().empty());
  {
    support::ScriptedDesktop desktop;
    d4select(V2_VAR->points->data);
    d4go(1);
    f4r_str(f4ref("PT_NO"), "x");
    db_write(1);
    EXPECT_EQ(desktop.boxes.size(), 1u);
  }
  EXPECT_EQ(support::BytesOf(folder.File("punkte.dbf")), OnePoint().Bytes());

  // Another folder that leads to the same table is the same project.
  const support::TempFolder leading;
  fs::create_symlink(folder.File("punkte.dbf"), leading.File("punkte.dbf"));
  second = korvo::OpenProject(leading.path());
  EXPECT_NE(second.note.find("Prozess " + std::to_string(child)), std::string::npos) << second.note;

  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  second = korvo::OpenProject(folder.path());
  EXPECT_TRUE(second.note.empty()) << second.note;
  EXPECT_TRUE(korvo::WhyOnlyLooking().empty());
  korvo::CloseProject();
  close(ready[0]);
  close(ready[1]);
}

TEST(Project, ThatCannotBeLockedIsOnlyLookedAtAndSaysWhy) {
  const support::TempFolder folder;
  folder.Write("punkte.dbf", OnePoint().Bytes());
  fs::create_symlink("nirgends", folder.File("korvo.sperre"));
  EXPECT_NE(korvo::OpenProject(folder.path()).note.find("Verkn"), std::string::npos) << korvo::WhyOnlyLooking();
  EXPECT_FALSE(korvo::WhyOnlyLooking().empty());
  korvo::CloseProject();
}

TEST(Project, ATableThatIsNoRegularOneIsLeftToThePlugin) {
  const support::TempFolder folder;
  const std::string path = folder.Write("punkte.dbf", "no table at all");
  const korvo::OpenedProject opened = korvo::OpenProject(folder.path());
  EXPECT_TRUE(opened.open);
  EXPECT_FALSE(opened.note.empty());
  EXPECT_NE(V2_VAR->points, nullptr);
  EXPECT_EQ(V2_VAR->points->data, nullptr);
  korvo::CloseProject();
  EXPECT_EQ(support::BytesOf(path), "no table at all");
}

}  // namespace
