#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "entry/host/desktop.h"
#include "entry/host/host.h"

namespace pktaus {

namespace {

constexpr std::size_t kPathSize = 1000;
constexpr std::size_t kExtensionLimit = 39;

std::vector<toolkit::FileFilter> Pairs(const char* filter) {
  std::vector<toolkit::FileFilter> pairs;
  while (*filter != '\0') {
    toolkit::FileFilter pair;
    pair.description = filter;
    filter += pair.description.size() + 1;
    pair.pattern = filter;
    // A description without a pattern stands at the end: behind its empty pattern there is nothing more to read.
    if (!pair.pattern.empty()) filter += pair.pattern.size() + 1;
    pairs.push_back(std::move(pair));
  }
  return pairs;
}

/// The extension that the first description tells in brackets, as in "Texte (*.txt)".
std::string DefaultExtension(std::string_view description) {
  const std::size_t star = description.find("*.");
  if (star == std::string_view::npos) return "*";
  const std::string_view behind = description.substr(star + 2);
  const std::size_t bracket = behind.find(')');
  if (bracket == std::string_view::npos) return "*";
  return std::string(behind.substr(0, bracket).substr(0, kExtensionLimit));
}

}  // namespace

int file_dialog(bool save, const char* title, std::string* path, const char* filter, int* index) {
  char buffer[kPathSize];
  put(buffer, path->c_str());
  toolkit::FilePick pick;
  pick.save = save;
  pick.owner = korvo_desktop->ForegroundWindow();
  pick.title = title;
  pick.path = buffer;
  pick.filters = Pairs(filter);
  pick.default_extension = DefaultExtension(filter);
  std::string picked;
  int chosen = 0;
  if (!korvo_desktop->PickFile(pick, &picked, &chosen)) return 1;
  put(buffer, picked.c_str());
  // A longer path was reported as too long. Cut it would name another file, so that nothing counts as chosen.
  if (picked.size() >= kPathSize) return 1;
  *path = buffer;
  if (index != nullptr) *index = chosen;
  return 0;
}

bool folder_dialog(toolkit::Window parent, std::string* path, const char* title) {
  std::string folder;
  if (!korvo_desktop->PickFolder(title, parent, &folder) || folder.empty()) return false;
  if (folder.back() != path::kSeparator) folder += path::kSeparator;
  *path = std::move(folder);
  return true;
}

}  // namespace pktaus
