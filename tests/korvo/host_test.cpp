// The host's operations as a plug-in calls them, and the projects behind them.
#include "entry/host/host.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "tests/support/open_project.h"
#include "tests/support/scripted_desktop.h"

namespace {

namespace fs = std::filesystem;

support::TableFile OnePoint(const char* number = "4711") {
  support::TableFile table(support::HostColumns());
  table.Add({{"PT_NO", number}, {"EAST", "1.5000"}});
  return table;
}

TEST(HostTexts, LosePaddingAtBothEndsAndDerivedPathsAreWholeOrEmpty) {
  const std::pair<const char*, const char*> kPadded[] = {{"  a b  ", "a b"}, {"   ", ""}, {"", ""}};
  for (const auto& [before, after] : kPadded) {
    char text[20];
    strcdel(std::strcpy(text, before), ' ', 1);
    EXPECT_STREQ(text, after);
  }
  const std::string stem(65, 'a');
  const std::pair<std::string, std::string> kDerived[] = {{"/p.q/punkte", "/p.q/punkte.nxk"},
                                                          {"/p/a.b.dbf", "/p/a.b.nxk"},
                                                          {stem + ".dbf", stem + ".nxk"},
                                                          {stem + "b.dbf", ""},
                                                          {"", ""}};
  for (const auto& [path, expected] : kDerived) {
    char derived[70] = "?";
    EXPECT_EQ(ext_change(derived, path.c_str(), "nxk"), derived);
    EXPECT_EQ(derived, expected);
  }
  for (const int number : {16, 9, 11, 51, 34, 10, 38, 35, 36, 37, 48, 47}) {
    EXPECT_TRUE(std::string(ext(number)).starts_with("nx")) << number;  // no table's own
  }
}

TEST(HostTables, EveryOperationSurvivesNullAndClosedTables) {
  support::ScriptedDesktop desktop;
  const support::OpenProject project(OnePoint());
  HostTable* points = V2_VAR->points;
  d4select(points->data);
  void* pt_no = f4ref("PT_NO");
  d4go(1);
  ASSERT_EQ(std::string(f4str(pt_no)), "4711           ");
  const auto reads = [](HostTable* table) {
    HostPoint point{};
    std::int32_t error = 0;
    vm_dbk_read(table, &point, 1, &error);
    return error == 0;
  };
  EXPECT_TRUE(reads(points));
  for (int time = 0; time < 2; ++time) vm_dbk_close(points);
  for (HostTable* none : {points, V2_VAR->dba}) EXPECT_FALSE(reads(none));
  for (void* handle : {points->data, static_cast<void*>(nullptr)}) {
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
  EXPECT_TRUE(reads(points));
  // A host without these tables gets the same calls.
  vm_dba_open(nullptr, 1), vm_dba_close(nullptr), vm_dbv_open(nullptr, 1, 1), vm_dbv_close(nullptr);
  vm_dbh_open(nullptr, 1, 1), vm_dbh_close(nullptr), vm_dbk_open(nullptr, 1, 1), vm_dbk_close(nullptr);
  EXPECT_TRUE(desktop.boxes.empty());

  d4select(points->data);
  d4go(1);
  f4r_double(f4ref("ELEV"), 123456789);
  db_write(1);
  ASSERT_EQ(desktop.boxes.size(), 1U);
  EXPECT_NE(desktop.boxes[0].text.find("ELEV"), std::string::npos);
  EXPECT_EQ(project.Field(1, "ELEV"), "          ");
}

TEST(HostTables, APointNumberIsGivenWholeOrNotAtAll) {
  const std::pair<const char*, const char*> kNumbers[] = {
      {"123456789012345", "123456789012345"}, {"1234567890123456", "no such point"}, {"  7  ", "  7"}, {"", ""}};
  for (const auto& [number, given] : kNumbers) {
    support::TableFile table({{"PT_NO", 'C', 20}});
    table.Add({{"PT_NO", number}});
    const support::OpenProject project(table);
    HostPoint point{};
    std::int32_t error = -1;
    vm_dbk_read(V2_VAR->points, &point, 1, &error);
    EXPECT_STREQ(error == 0 ? point.pt_no : "no such point", given);
  }
}

class Project : public testing::Test {
 protected:
  ~Project() override { korvo::CloseProject(); }
  const std::string bytes = OnePoint().Bytes();
  support::TempFolder folder;
};

TEST_F(Project, HasHandlesForCompanionsAndMakesDerivedFilesAnew) {
  for (const char* name : {"punkte.dbf", "punkte.dba", "punkte.dbh"}) folder.Write(name, bytes);
  ASSERT_TRUE(korvo::OpenProject(folder.path()).open);
  ASSERT_NE(V2_VAR->dba, nullptr);
  EXPECT_EQ(V2_VAR->dba->path, folder.File("punkte.dba"));
  EXPECT_EQ(V2_VAR->dbv, nullptr);
  EXPECT_TRUE(fs::remove(folder.File("punkte.nxk")));
  vm_dbk_open(V2_VAR->points, 1, 1);
  EXPECT_TRUE(fs::exists(folder.File("punkte.nxk")));
  korvo::CloseProject();
  EXPECT_EQ(V2_VAR->points, nullptr);
}

TEST_F(Project, FindsItsPointTableByRule) {
  const std::string foreign = support::TableFile({{"NAME", 'C', 5}}).Bytes();
  const struct {
    std::vector<const char*> points, others;
    const char* found;
  } kCases[] = {{{}, {}, "refused"},
                {{}, {"lage.dbf"}, "lage.dbf"},
                {{"lage.DBF"}, {"a.dbf"}, "lage.DBF"},
                {{}, {"a.dbf", "b.dbf"}, "refused"},
                {{"a.dbf", "b.dbf"}, {}, "refused"},
                {{"a.dbf"}, {"PUNKTE.DBF"}, "PUNKTE.DBF"},
                {{"punkte.txt"}, {}, "refused"}};
  for (const auto& c : kCases) {
    const support::TempFolder project;
    for (const char* name : c.points) project.Write(name, bytes);
    for (const char* name : c.others) project.Write(name, foreign);
    std::string why;
    const auto found = korvo::FindPointTable(project.path(), &why);
    EXPECT_EQ(found.value_or(project.File("refused")), project.File(c.found)) << why;
    EXPECT_EQ(found.has_value(), why.empty()) << why;
  }
}

TEST_F(Project, SaysWhyAFolderHasNoTable) {
  const struct {
    const char *folder, *table;
    fs::perms may;
    const char* refusal;
  } kCases[] = {{"keine", "", fs::perms::all, "liegt keine Punkttabelle"},
                {"zu", "", fs::perms::none, "zu kann nicht gelesen werden: Zugriff verweigert."},
                {"ordner", "punkte.dbf", fs::perms::all, "ordner/punkte.dbf: Es ist keine Datei."},
                {"name", "\xC5\x82.dbf", fs::perms::all, "Zeichen, die Korvo nicht kennt"}};
  const uid_t user = geteuid();
  fs::permissions(folder.path(), fs::perms::all);
  for (const auto& c : kCases) {
    fs::create_directories(folder.File(c.folder) + "/" + c.table);
    fs::permissions(folder.File(c.folder), c.may);
    ASSERT_EQ(seteuid(user == 0 ? 4711 : user), 0) << "root may read all";
    const std::string refusal = korvo::OpenProject(folder.File(c.folder)).refusal;
    ASSERT_EQ(seteuid(user), 0);
    fs::permissions(folder.File(c.folder), fs::perms::all);
    EXPECT_NE(refusal.find(c.refusal), std::string::npos) << refusal;
  }
  const std::string pipe = folder.File("punkte.dbf");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& named : {pipe, folder.path()}) {
    EXPECT_EQ(korvo::OpenProject(named).refusal, pipe + ": Es ist keine Datei.");
  }
}

TEST_F(Project, PathsThatTheHostCannotHoldAreRefusedInWordsUnlessALinkLeadsThere) {
  const std::string fits(69 - folder.path().size() - std::strlen("//punkte.dbf"), 'a');
  const std::pair<std::string, std::string> kNames[] = {
      {fits, ""}, {fits + "a", "69"}, {"\xE2\x88\x91", "Zeichen"}, {"kurz", ""}};
  for (const auto& [name, refusal] : kNames) {
    if (name == "kurz") fs::create_directory_symlink(folder.File(fits + "a"), folder.File(name));
    fs::create_directories(folder.File(name));
    folder.Write(name + "/punkte.dbf", bytes);
    const korvo::OpenedProject opened = korvo::OpenProject(folder.File(name));
    EXPECT_EQ(opened.open, refusal.empty()) << name;
    EXPECT_NE(opened.refusal.find(refusal), std::string::npos) << opened.refusal;
  }
}

TEST_F(Project, OpensWithANoteOnPointsThatAreLeftOut) {
  const std::string whole = "123456789012345", longer = "1234567890123456";
  const struct {
    std::vector<std::string> numbers;
    std::size_t cut;
    const char* note;
  } kCases[] = {
      {{whole, whole}, 0, ""},
      {{whole, longer},
       0,
       "1 Punkt hat eine Nummer mit mehr als 15 Zeichen und wird \xFC"
       "bergangen."},
      {{longer, longer},
       0,
       "2 Punkte haben Nummern mit mehr als 15 Zeichen und werden \xFC"
       "bergangen."},
      {{whole, whole}, 5, "Die Punkttabelle ist unvollst\xE4ndig. S\xE4tze laut Dateikopf: 2, vorhanden: 1."},
  };
  for (const auto& c : kCases) {
    support::TableFile table({{"PT_NO", 'C', 20}});
    for (const std::string& number : c.numbers) table.Add({{"PT_NO", number}});
    folder.Write("punkte.dbf", table.Bytes().substr(0, table.Bytes().size() - c.cut));
    EXPECT_EQ(korvo::OpenProject(folder.path()).note, c.note);
  }
}

TEST_F(Project, ThatCannotBeLockedIsOnlyLookedAtAndSaysWhy) {
  folder.Write("punkte.dbf", bytes);
  fs::create_symlink("nirgends", folder.File("korvo.sperre"));
  EXPECT_EQ(korvo::OpenProject(folder.path()).note,
            "Das Projekt kann nicht gesperrt werden: Zu viele Verkn\xFCpfungen im Pfad.");
  support::ScriptedDesktop desktop;
  d4select(V2_VAR->points->data);
  d4go(1);
  db_write(1);
  EXPECT_EQ(desktop.boxes.size(), 1U);
}

}  // namespace
