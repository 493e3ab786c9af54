#include "dialogs/state_files.h"

#include <string_view>

#include "entry/host/desktop.h"
#include "platform/file.h"

namespace pktaus {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Two digits and something else behind them.
bool IsStateFile(std::string_view name) {
  return name.size() > 2 && IsDigit(name[0]) && IsDigit(name[1]) && !IsDigit(name[2]);
}

}  // namespace

std::vector<StateFile> ListStateFiles() {
  constexpr std::size_t kDigits = 2;
  constexpr std::size_t kEnding = std::string_view(".XML").size();
  std::vector<StateFile> states;
  for (const std::string& name : platform::ListFiles(plugin_folder(), "*.XML")) {
    if (!IsStateFile(name)) continue;
    states.push_back(
        {(name[0] - '0') * 10 + (name[1] - '0'), name.substr(kDigits, name.size() - kDigits - kEnding), name});
  }
  return states;
}

}  // namespace pktaus
