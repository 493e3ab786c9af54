// The library's one entry: a run of the plug-in, from the host's call until the surveyor leaves the menu.

#include <cstring>
#include <initializer_list>
#include <string>

#include "base/bounded.h"
#include "base/path.h"
#include "entry/commands.h"
#include "entry/guard.h"
#include "entry/host/desktop.h"
#include "entry/host/host.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/system.h"
#include "store/schema.h"

namespace pktaus {

namespace {

// What __FILE__ gives depends on the build's folders and cache.
constexpr char kSourceFile[] = "src/entry/PKT_AUS.cpp";

constexpr std::size_t kDerivedPathSize = 70;

std::string PathOf(const HostTable* table) {
  return table == nullptr ? std::string() : std::string(table->path, strnlen(table->path, sizeof(table->path)));
}

/// Gives the path of the point table's file, empty where the host has no such table.
std::string tables_close(const HostState& host) {
  if (host.points != nullptr) vm_dbk_close(host.points);
  if (host.dba != nullptr) vm_dba_close(host.dba);
  if (host.dbv != nullptr) vm_dbv_close(host.dbv);
  if (host.dbh != nullptr) {
    vm_dbh_open(host.dbh, 0, 0);
    vm_dbh_close(host.dbh);
  }
  return PathOf(host.points);
}

/// Whether the host can write `path` with another extension into the buffer that it is given.
bool Fits(const std::string& path, const char* extension) {
  const std::string_view name = path::FileName(path);
  const std::size_t dot = name.rfind('.');
  const std::size_t old_length = dot == std::string_view::npos ? 0 : name.size() - dot;
  return path.size() - old_length + 1 + std::strlen(extension) < kDerivedPathSize;
}

/// Deletes the files that the host derived from a table and makes anew when it opens it.
void DeleteDerivedFiles(const std::string& table_path, std::initializer_list<int> numbers) {
  if (table_path.empty()) return;
  for (const int number : numbers) {
    const char* extension = ext(number);
    // A path that was cut, or an extension that is the table's own, would lead to a file that is not derived.
    if (extension == nullptr || *extension == '\0' || !Fits(table_path, extension)) continue;
    char derived[kDerivedPathSize] = {};
    ext_change(derived, table_path.c_str(), extension);
    if (derived != table_path) platform::DeleteIfThere(derived);
  }
}

void tables_reopen(const HostState& host) {
  {
    const platform::KeepSystemError keep;
    DeleteDerivedFiles(PathOf(host.points), {16, 9, 11, 51, 34, 10});
    DeleteDerivedFiles(PathOf(host.dba), {38, 34});
    DeleteDerivedFiles(PathOf(host.dbv), {35, 36, 37, 48, 47});
  }
  vm_dbk_open(host.points, 1, 1);
  vm_dbk_nxk_select(host.points);
  vm_dbk_nxs_select(host.points);
  vm_dba_open(host.dba, 1);
  vm_dba_nxh_select(host.dba);
  vm_dbh_open(host.dbh, 1, 1);
  vm_dbh_nxi_select(host.dbh);
  vm_dbh_nxo_select(host.dbh);
  vm_dbv_open(host.dbv, 1, 1);
  vm_dbv_nxv_select(host.dbv);
  vm_dbv_nxw_select(host.dbv);
}

void Run(HostState** host_state) {
  // A host without a state is one without tables: the extension ends the run.
  static constexpr HostState kNoTables{};
  const HostState& host = host_state == nullptr || *host_state == nullptr ? kNoTables : **host_state;
  platform::SetClock(&korvo_desktop->Clock());
  const int error = schema_extend(tables_close(host).c_str());
  tables_reopen(host);
  menu_loop(error);
}

}  // namespace

}  // namespace pktaus

std::int32_t pkt_aus(HostState** state) {
  const platform::Clock& clock = platform::CurrentClock();
  const pktaus::OverflowReport report =
      pktaus::SetOverflowReport([](const char* title, const char* text) { pktaus::text_view(title, text); });
  pktaus::RunGuarded([state] { pktaus::Run(state); }, pktaus::kSourceFile, __LINE__);
  pktaus::SetOverflowReport(report);
  platform::SetClock(&clock);
  return 0;
}
