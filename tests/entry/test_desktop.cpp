#include <gtest/gtest.h>

#include "entry/host/desktop.h"
#include "entry/host/text_view.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

TEST(HostWindow, IsTheLastWindowOfTheHostsTitleAndClass) {
  const std::string long_title = "Korvo " + std::string(144, 'x');
  const struct {
    const char* name;
    std::vector<toolkit::WindowInfo> windows;
    toolkit::Window found;
  } kCases[] = {
      {"none", {}, 0},
      {"one", {{5, "Korvo - Altstadt", "GD_WIN32"}}, 5},
      {"other class", {{5, "Korvo - Altstadt", "EDIT"}}, 0},
      {"other title", {{5, "korvo", "GD_WIN32"}, {6, "Mein Korvo", "GD_WIN32"}}, 0},
      {"the last counts", {{5, "Korvo", "GD_WIN32"}, {6, "Korvo 2", "GD_WIN32"}, {7, "x", "GD_WIN32"}}, 6},
      {"same title in front", {{4, "Korvo", "GD_WIN32"}, {5, "Korvo", "EDIT"}}, 4},
      {"150 characters", {{5, long_title, "GD_WIN32"}}, 5},
      {"151 characters", {{5, long_title + "x", "GD_WIN32"}}, 0},
  };
  for (const auto& c : kCases) {
    support::ScriptedDesktop desktop;
    desktop.windows = c.windows;
    EXPECT_EQ(host_window(), c.found) << c.name;
  }
}

TEST(TextView, ShowsTitleAndTextAsTheyAre) {
  support::ScriptedDesktop desktop;
  desktop.persons.push_back([](toolkit::Dialog& dialog) {
    EXPECT_EQ(dialog.number(), 7010);
    EXPECT_EQ(dialog.title(), "Titel");
    EXPECT_EQ(dynamic_cast<toolkit::TextField*>(dialog.Find(7021))->text, "a\r\r\n\tb");
    EXPECT_EQ(dialog.Handle(toolkit::Typed{7021, "x"}), toolkit::Answer::kReadOnly);
    EXPECT_EQ(dialog.Handle(toolkit::Pressed{toolkit::kOk}), toolkit::Answer::kTaken);
  });
  EXPECT_EQ(text_view("Titel", "a\r\r\n\tb"), toolkit::kOk);
  EXPECT_EQ(text_view("Titel", ""), toolkit::kCancel);
}

TEST(FileDialog, ReadsTheFilterAsThePickerTakesIt) {
  const struct {
    const char* filter;
    const char* extension;
    std::vector<std::pair<std::string, std::string>> pairs;
  } kCases[] = {
      {"*.XML\0*.XML\0", "*", {{"*.XML", "*.XML"}}},
      {"Texte (*.txt)\0*.txt\0Alle\0*.*\0", "txt", {{"Texte (*.txt)", "*.txt"}, {"Alle", "*.*"}}},
      {"Alle\0*.*)\0", "*", {{"Alle", "*.*)"}}},
      {") *.a\0*.a\0", "*", {{") *.a", "*.a"}}},
      {"(*.0123456789012345678901234567890123456789)\0x\0",
       "012345678901234567890123456789012345678",
       {{"(*.0123456789012345678901234567890123456789)", "x"}}},
      {"nur Beschreibung\0", "*", {{"nur Beschreibung", ""}}},
      {"", "*", {}},
  };
  for (const auto& c : kCases) {
    support::ScriptedDesktop desktop;
    std::string path = "alt.XML";
    int index = 9;
    EXPECT_EQ(file_dialog(true, "Titel", &path, c.filter, &index), 1);
    EXPECT_EQ(path, "alt.XML");
    EXPECT_EQ(index, 9);
    ASSERT_EQ(desktop.picks.size(), 1U);
    const toolkit::FilePick& pick = desktop.picks[0];
    EXPECT_EQ(pick.default_extension, c.extension) << c.filter;
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto& filter : pick.filters) pairs.emplace_back(filter.description, filter.pattern);
    EXPECT_EQ(pairs, c.pairs) << c.filter;
    EXPECT_TRUE(pick.save && pick.ask_before_overwrite && pick.title == "Titel" && pick.path == "alt.XML");
  }
}

TEST(FileDialog, TakesAPathOf999CharactersAndReportsALongerOne) {
  support::ScriptedDesktop desktop;
  const support::OverflowLog log;
  desktop.paths = {std::string(999, 'a'), std::string(1000, 'b')};
  std::string path;
  int index = 9;
  EXPECT_EQ(file_dialog(false, "", &path, "*.XML\0*.XML\0", &index), 0);
  EXPECT_EQ(path, std::string(999, 'a'));
  EXPECT_EQ(index, 0);
  EXPECT_TRUE(log.texts().empty());
  EXPECT_EQ(file_dialog(false, "", &path, "*.XML\0*.XML\0"), 1);
  EXPECT_EQ(path, std::string(999, 'a'));
  EXPECT_EQ(log.texts().size(), 1U);
}

TEST(FolderDialog, GivesAFolderWithItsSeparatorOrNothing) {
  support::ScriptedDesktop desktop;
  desktop.paths = {"/a/b", "/a/b/", "", std::nullopt};
  for (const char* expected : {"/a/b/", "/a/b/"}) {
    std::string path;
    EXPECT_TRUE(folder_dialog(0, &path, "Titel"));
    EXPECT_EQ(path, expected);
  }
  std::string path = "alt";
  EXPECT_FALSE(folder_dialog(0, &path, "Titel"));
  EXPECT_FALSE(folder_dialog(0, &path, "Titel"));
  EXPECT_EQ(path, "alt");
}

}  // namespace
}  // namespace pktaus
