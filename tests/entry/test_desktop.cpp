#include <gtest/gtest.h>

#include "entry/host/desktop.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

TEST(Desktop, HostWindowIsTheLastOfItsTitleAndClass) {
  support::ScriptedDesktop desktop;
  const std::pair<std::vector<toolkit::WindowInfo>, toolkit::Window> kCases[] = {
      {{{5, "korvo", "GD_WIN32"}, {6, "Mein Korvo", "GD_WIN32"}, {7, "Korvo", "EDIT"}}, 0},
      {{{5, "Korvo", "GD_WIN32"}, {6, "Korvo 2", "GD_WIN32"}, {7, "x", "GD_WIN32"}}, 6},
  };
  for (const auto& [windows, found] : kCases) {
    desktop.windows = windows;
    EXPECT_EQ(host_window(), found);
  }
}

TEST(Desktop, FileDialogReadsTheFilterAsThePickerTakesIt) {
  support::ScriptedDesktop desktop;
  const struct {
    std::string filter, extension, pairs;
  } kCases[] = {
      {{"*.XML\0*.XML\0", 12}, "*", "*.XML|*.XML|"},
      {{"Texte (*.txt)\0*.txt\0Alle\0*.*\0", 29}, "txt", "Texte (*.txt)|*.txt|Alle|*.*|"},
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

TEST(Desktop, FolderDialogGivesAFolderWithItsSeparatorOrNothing) {
  support::ScriptedDesktop desktop;
  desktop.paths = {"/a/b", "/a/b/", std::nullopt};
  for (const char* expected : {"/a/b/", "/a/b/", "alt"}) {
    std::string path = "alt";
    EXPECT_EQ(folder_dialog(0, &path, "Titel"), *expected == '/');
    EXPECT_EQ(path, expected);
  }
}

}  // namespace
}  // namespace pktaus
