#include "korvo/words/options.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "base/path.h"
#include "platform/system.h"

namespace korvo {

std::string ReadCommandLine(int count, char** arguments, const CommandLine& line) {
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    const auto is_it = [argument](const auto& option) { return argument == option.first; };
    const auto value = std::find_if(line.values.begin(), line.values.end(), is_it);
    const auto flag = std::find_if(line.flags.begin(), line.flags.end(), is_it);
    if (flag != line.flags.end()) {
      *flag->second = true;
    } else if (value != line.values.end()) {
      if (++i == count) return "Hinter " + std::string(argument) + " fehlt der Wert.";
      *value->second = arguments[i];
    } else if (argument.starts_with("--")) {
      return "Unbekannte Option " + std::string(argument) + "; --help zeigt alle.";
    } else if (!line.project->empty()) {
      return "Es kann nur ein Projekt offen sein: " + std::string(argument);
    } else {
      *line.project = argument;
    }
  }
  return {};
}

bool HoldStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDONLY) != stream) return false;
  }
  return true;
}

std::string PluginBesideProgram() {
  return path::ToDisk(path::Join(path::Folder(platform::OwnLibraryPath()), "libpkt_aus.so"));
}

}  // namespace korvo
