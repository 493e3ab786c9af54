#include "entry/host/desktop.h"

#include <cstddef>
#include <utility>

#include "base/path.h"
#include "entry/host/host.h"
#include "entry/host/text_view.h"
#include "platform/system.h"

namespace pktaus {

namespace {

constexpr std::size_t kTitleLimit = 150;

std::string folder_for_tests;

}  // namespace

toolkit::Window host_window() {
  toolkit::Window host = 0;
  for (const toolkit::WindowInfo& info : korvo_desktop->TopLevelWindows()) {
    const std::string title = info.title.substr(0, kTitleLimit);
    if (title.starts_with("Korvo") && korvo_desktop->FindWindow("GD_WIN32", title) == info.window) host = info.window;
  }
  return host;
}

int message_box(const std::string& text, const std::string& title, unsigned flags) {
  return korvo_desktop->ShowBox(text, title, flags, host_window());
}

int text_view(const char* title, const char* text) {
  CTextViewDlg dialog(title, text);
  return RunUnderHost(dialog);
}

int free_text_view(const char* title, const char* text) {
  CTextViewDlg dialog(title, text);
  return toolkit::RunModal(*korvo_desktop, dialog, 0);
}

std::string plugin_folder() {
  return folder_for_tests.empty() ? std::string(path::Folder(platform::OwnLibraryPath())) : folder_for_tests;
}

void SetPluginFolder(std::string folder) { folder_for_tests = std::move(folder); }

int RunUnderHost(toolkit::Dialog& dialog) { return toolkit::RunModal(*korvo_desktop, dialog, host_window()); }

}  // namespace pktaus
