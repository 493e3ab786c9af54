#include "korvo/host/plugin.h"

#include <dlfcn.h>

#include "base/text.h"
#include "korvo/host/project.h"
#include "korvo/host/state.h"

namespace korvo {

using namespace text::literals;

bool RunPlugin(const std::string& library_on_disk, std::string* why) {
  Host& host = TheHost();
  if (host.folder.empty()) {
    *why = "Es ist kein Projekt geöffnet."_ansi;
    return false;
  }
  if (!host.only_looking.empty()) {
    *why = host.only_looking + " Sie können es nur ansehen."_ansi;
    return false;
  }
  // A name without a separator would be looked for in the system's own folders.
  const bool has_folder = library_on_disk.find('/') != std::string::npos;
  void* library = dlopen((has_folder ? library_on_disk : "./" + library_on_disk).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = library != nullptr ? dlsym(library, "pkt_aus") : nullptr;
  if (entry == nullptr) {
    const char* reason = dlerror();
    *why = std::string("Die Bibliothek lässt sich nicht starten: "_ansi) +
           text::FromUtf8Lossy(reason != nullptr ? reason : library_on_disk);
    return false;
  }
  reinterpret_cast<std::int32_t (*)(HostState**)>(entry)(&V2_VAR);
  SyncTables(host);
  return true;
}

}  // namespace korvo
