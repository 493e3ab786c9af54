#include "korvo/host/plugin.h"

#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "base/text.h"
#include "korvo/host/project.h"
#include "korvo/host/state.h"

namespace korvo {

using namespace text::literals;

namespace {

constexpr const char* kNoLibrary = "Die Bibliothek fehlt: "_ansi;
constexpr const char* kNotStarted = "Die Bibliothek lässt sich nicht starten: "_ansi;
constexpr const char* kSystemSays = " (Meldung des Systems: "_ansi;

}  // namespace

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
  const std::string named = text::FromUtf8Lossy(library_on_disk);
  std::error_code unknown;
  if (!std::filesystem::exists(library_on_disk, unknown)) {
    *why = kNoLibrary + named;
    return false;
  }
  // A name without a separator would be looked for in the system's own folders.
  const bool has_folder = library_on_disk.find('/') != std::string::npos;
  void* library = dlopen((has_folder ? library_on_disk : "./" + library_on_disk).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = library != nullptr ? dlsym(library, "pkt_aus") : nullptr;
  if (entry == nullptr) {
    const char* reason = dlerror();
    *why = kNotStarted + named;
    if (reason != nullptr) *why += kSystemSays + text::FromUtf8Lossy(reason) + ")";
    return false;
  }
  host.plugin_runs = true;
  reinterpret_cast<std::int32_t (*)(HostState**)>(entry)(&V2_VAR);
  host.plugin_runs = false;
  SyncTables(host);
  if (host.points.table.stale()) {
    std::string reason;
    if (!OpenPoints(host, &reason)) Tell(std::string("Die Punkttabelle ist nicht lesbar: "_ansi) + reason);
    if (host.front_end != nullptr) host.front_end->PointChanged(0);
  }
  return true;
}

}  // namespace korvo
