#include <gtest/gtest.h>

#include "entry/host/desktop.h"
#include "entry/host/text_view.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

class Desktop : public testing::Test {
 protected:
  support::ScriptedDesktop desktop;
};

TEST_F(Desktop, HostWindowIsTheLastOfItsTitleAndClass) {
  const std::string long_title = "Korvo " + std::string(144, 'x');
  const std::pair<std::vector<toolkit::WindowInfo>, toolkit::Window> kCases[] = {
      {{}, 0},
      {{{5, "Korvo - Altstadt", "EDIT"}}, 0},
      {{{5, "korvo", "GD_WIN32"}, {6, "Mein Korvo", "GD_WIN32"}}, 0},
      {{{5, "Korvo", "GD_WIN32"}, {6, "Korvo 2", "GD_WIN32"}, {7, "x", "GD_WIN32"}}, 6},
      {{{4, "Korvo", "GD_WIN32"}, {5, "Korvo", "EDIT"}}, 4},
      {{{5, long_title, "GD_WIN32"}, {6, long_title + "x", "GD_WIN32"}}, 5},
  };
  for (const auto& [windows, found] : kCases) {
    desktop.windows = windows;
    EXPECT_EQ(host_window(), found);
  }
}

TEST_F(Desktop, TextViewShowsTitleAndTextAsTheyAre) {
  desktop.persons.push_back([](toolkit::Dialog& dialog) {
    EXPECT_EQ(dialog.title(), "Titel");
    EXPECT_EQ(dynamic_cast<toolkit::TextField*>(dialog.Find(7021))->text, "a\r\r\n\tb");
    EXPECT_EQ(dialog.Handle(toolkit::Typed{7021, "x"}), toolkit::Answer::kReadOnly);
    EXPECT_EQ(dialog.Handle(toolkit::Pressed{toolkit::kOk}), toolkit::Answer::kTaken);
  });
  EXPECT_EQ(text_view("Titel", "a\r\r\n\tb"), toolkit::kOk);
}

TEST_F(Desktop, FileDialogReadsTheFilterAsThePickerTakesIt) {
  const std::string digits = "0123456789012345678901234567890123456789";
  const std::string cut_filter = "(*." + digits + ")" + std::string("\0x\0", 3);
  const struct {
    std::string filter;
    std::string extension;
    std::string pairs;
  } kCases[] = {
      {{"*.XML\0*.XML\0", 12}, "*", "*.XML|*.XML|"},
      {{"Texte (*.txt)\0*.txt\0Alle\0*.*\0", 29}, "txt", "Texte (*.txt)|*.txt|Alle|*.*|"},
      {{"Alle\0*.*)\0", 10}, "*", "Alle|*.*)|"},
      {cut_filter, digits.substr(0, 39), "(*." + digits + ")|x|"},
      {{"nur Beschreibung\0", 17}, "*", "nur Beschreibung||"},
      {"", "*", ""},
  };
  for (const auto& c : kCases) {
    std::string path = "alt.XML";
    EXPECT_EQ(file_dialog(true, "Titel", &path, c.filter.c_str()), 1);
    EXPECT_EQ(path, "alt.XML");
    const toolkit::FilePick& pick = desktop.picks.back();
    EXPECT_EQ(pick.default_extension, c.extension) << c.pairs;
    std::string pairs;
    for (const auto& filter : pick.filters) pairs += filter.description + "|" + filter.pattern + "|";
    EXPECT_EQ(pairs, c.pairs);
    EXPECT_TRUE(pick.save && pick.ask_before_overwrite && pick.title == "Titel" && pick.path == "alt.XML");
  }
}

TEST_F(Desktop, FileDialogTakesAPathOf999CharactersAndReportsALongerOne) {
  const support::OverflowLog log;
  desktop.paths = {std::string(999, 'a'), std::string(1000, 'b')};
  std::string path;
  for (const int result : {0, 1}) {
    EXPECT_EQ(file_dialog(false, "", &path, ""), result);
    EXPECT_EQ(path, std::string(999, 'a'));
    EXPECT_EQ(log.texts().size(), static_cast<std::size_t>(result));
  }
}

TEST_F(Desktop, FolderDialogGivesAFolderWithItsSeparatorOrNothing) {
  desktop.paths = {"/a/b", "/a/b/", "", std::nullopt};
  for (const char* expected : {"/a/b/", "/a/b/", "alt", "alt"}) {
    std::string path = "alt";
    const bool picked = folder_dialog(0, &path, "Titel");
    EXPECT_EQ(picked, path != "alt");
    EXPECT_EQ(path, expected);
  }
}

}  // namespace
}  // namespace pktaus
