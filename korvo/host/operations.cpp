// The host's operations by their names. They may be called in any state: without a table, with a null handle, with a
// reference to a column of a table that was closed since.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "base/path.h"
#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/host/menus.h"
#include "korvo/host/points.h"
#include "korvo/host/state.h"

using korvo::Host;
using korvo::TheHost;
using namespace text::literals;

namespace {

constexpr std::size_t kMenuText = 100;
constexpr std::size_t kDerivedPath = 70;
// A reference is the opening of its table and the column's number from 1, so that none ever points at what is gone.
constexpr unsigned kColumnBits = 12;

struct Reference {
  korvo::Table* table = nullptr;
  int column = -1;
};

Reference Resolve(void* handle) {
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  const int column = static_cast<int>(number & ((1U << kColumnBits) - 1)) - 1;
  Host& host = TheHost();
  for (korvo::TableSlot* slot : {&host.points, &host.dba, &host.dbv, &host.dbh}) {
    korvo::Table& table = slot->table;
    if (table.IsOpen() && (static_cast<std::uintptr_t>(table.opening()) << kColumnBits) == number - column - 1) {
      return {&table, column};
    }
  }
  return {};
}

korvo::TableSlot* SlotOf(void* handle) {
  Host& host = TheHost();
  for (korvo::TableSlot* slot : {&host.points, &host.dba, &host.dbv, &host.dbh}) {
    if (handle == &slot->handle) return slot;
  }
  return nullptr;
}

void OpenHandle(void* handle) {
  Host& host = TheHost();
  korvo::TableSlot* slot = SlotOf(handle);
  if (slot == nullptr || slot->handle.path[0] == '\0') return;
  std::string why;
  const bool open = slot == &host.points ? OpenPoints(host, &why) : OpenOther(host, *slot, &why);
  if (!open) {
    korvo::Tell(std::string("Die Tabelle "_ansi) + slot->handle.path + " kann nicht geöffnet werden: "_ansi + why);
  }
  if (slot == &host.points && host.front_end != nullptr) host.front_end->PointChanged(0);
}

void CloseHandle(void* handle) {
  if (korvo::TableSlot* slot = SlotOf(handle)) CloseOther(TheHost(), *slot);
}

}  // namespace

extern "C" {

HostState* V2_VAR = &TheHost().state;
toolkit::Desktop* korvo_desktop = nullptr;

void _load_men(const char* name, void** menu, int /*number*/) {
  if (menu == nullptr) return;
  *menu = name == nullptr ? nullptr : const_cast<korvo::Menu*>(korvo::FindMenu(name));
}

int get_menu_no(void* menu, int /*one*/, char* text) {
  Host& host = TheHost();
  SyncTables(host);
  host.told_stale = false;
  if (menu == nullptr || host.front_end == nullptr) return 0;
  const auto& shown = *static_cast<const korvo::Menu*>(menu);
  const int number = host.front_end->ChooseFromMenu(shown);
  if (text != nullptr) {
    std::string_view chosen;
    for (const korvo::Menu::Entry& entry : shown.entries) {
      if (entry.number == number) chosen = entry.text;
    }
    const std::size_t length = std::min(chosen.size(), kMenuText - 1);
    std::memcpy(text, chosen.data(), length);
    text[length] = '\0';
  }
  return number;
}

const char* ext(int number) {
  switch (number) {
    case 16:
      return "nxk";
    case 9:
      return "nxs";
    case 11:
      return "nxp";
    case 51:
      return "nxr";
    case 34:
      return "nxa";
    case 10:
      return "nxc";
    case 38:
      return "nxh";
    case 35:
      return "nxv";
    case 36:
      return "nxw";
    case 37:
      return "nxd";
    case 48:
      return "nxe";
    case 47:
      return "nxf";
    default:
      return "";
  }
}

char* ext_change(char* dst, const char* path, const char* extension) {
  if (dst == nullptr) return nullptr;
  dst[0] = '\0';
  // What this gives is deleted next: no text at all where there is no such file name or it would be cut.
  if (path == nullptr || path[0] == '\0' || extension == nullptr || extension[0] == '\0') return dst;
  const std::string_view whole(path);
  const std::string_view name = path::FileName(whole);
  const std::size_t dot = name.rfind('.');
  const std::size_t kept = whole.size() - name.size() + std::min(dot, name.size());
  const std::string changed = std::string(whole.substr(0, kept)) + "." + extension;
  if (changed.size() < kDerivedPath) std::memcpy(dst, changed.c_str(), changed.size() + 1);
  return dst;
}

void strcdel(char* text, int character, int /*one*/) {
  if (text == nullptr || character == 0) return;
  const std::string_view whole(text);
  const auto pad = static_cast<char>(character);
  const std::size_t first = whole.find_first_not_of(pad);
  if (first == std::string_view::npos) {
    text[0] = '\0';
    return;
  }
  const std::size_t length = whole.find_last_not_of(pad) - first + 1;
  std::memmove(text, text + first, length);
  text[length] = '\0';
}

void vm_dbk_open(HostTable* table, int, int) { OpenHandle(table); }
void vm_dbk_close(HostTable* table) { CloseHandle(table); }
// The tables are read by record number here; an order has nothing to select.
void vm_dbk_nxk_select(HostTable*) {}
void vm_dbk_nxs_select(HostTable*) {}

void vm_dbk_read(HostTable* table, HostPoint* point, std::int32_t number, std::int32_t* error) {
  const bool read =
      table != nullptr && table == &TheHost().points.handle && point != nullptr && korvo::ReadPoint(number, point);
  if (error != nullptr) *error = read ? 0 : 1;
}

void vm_koor_clear(HostPoint* point) {
  if (point != nullptr) *point = HostPoint{};
}

int v2_point_ask(HostTable* table, HostPoint* point, std::int32_t* kept, int /*zero*/) {
  Host& host = TheHost();
  SyncTables(host);
  host.told_stale = false;
  if (table != &host.points.handle || point == nullptr || host.front_end == nullptr) return 1;
  if (!host.front_end->PickPoint(point)) return 1;
  if (kept != nullptr) ++*kept;
  return 0;
}

void vm_dba_open(HostTable* table, int) { OpenHandle(table); }
void vm_dba_close(HostTable* table) { CloseHandle(table); }
void vm_dba_nxh_select(HostTable*) {}

void vm_dbh_open(void* table, int open, int) {
  if (open != 0) OpenHandle(table);
}
void vm_dbh_close(void* table) { CloseHandle(table); }
void vm_dbh_nxi_select(void*) {}
void vm_dbh_nxo_select(void*) {}

void vm_dbv_open(HostTable* table, int, int) { OpenHandle(table); }
void vm_dbv_close(HostTable* table) { CloseHandle(table); }
void vm_dbv_nxv_select(HostTable*) {}
void vm_dbv_nxw_select(HostTable*) {}

void d4select(void* data) {
  Host& host = TheHost();
  host.current = nullptr;
  for (korvo::TableSlot* slot : {&host.points, &host.dba, &host.dbv, &host.dbh}) {
    if (data == &slot->table && slot->table.IsOpen()) host.current = &slot->table;
  }
}

void db_i_select(void*) {}

std::int32_t d4reccount(void) {
  const korvo::Table* table = TheHost().current;
  return table != nullptr ? table->count() : 0;
}

void d4go(std::int32_t number) {
  if (korvo::Table* table = TheHost().current) table->Go(number);
}

void* f4ref(const char* name) {
  const korvo::Table* table = TheHost().current;
  const int column = table != nullptr && name != nullptr ? table->Find(name) : -1;
  if (column < 0) return nullptr;
  const std::uintptr_t number =
      (static_cast<std::uintptr_t>(table->opening()) << kColumnBits) + static_cast<std::uintptr_t>(column) + 1;
  return reinterpret_cast<void*>(number);
}

const char* f4str(void* column) {
  static std::string buffer;
  buffer.clear();
  const Reference at = Resolve(column);
  if (at.table != nullptr) at.table->Text(at.column, &buffer);
  return buffer.c_str();
}

double f4double(void* column) {
  const Reference at = Resolve(column);
  return at.table != nullptr ? at.table->Number(at.column) : 0.0;
}

void f4r_str(void* column, const char* text) {
  const Reference at = Resolve(column);
  if (at.table != nullptr && text != nullptr) at.table->SetText(at.column, text);
}

void f4r_double(void* column, double value) {
  const Reference at = Resolve(column);
  if (at.table != nullptr) at.table->SetNumber(at.column, value);
}

void db_write(std::int32_t number) {
  Host& host = TheHost();
  std::string why;
  if (host.current == nullptr) return;
  if (host.current->Write(number, &why)) {
    if (host.current == &host.points.table && host.front_end != nullptr) host.front_end->PointChanged(number);
    return;
  }
  // The same reason for each of many points is told once a command.
  if ((host.current->stale() || !host.current->writable()) && std::exchange(host.told_stale, true)) return;
  korvo::Tell(std::string("Satz "_ansi) + std::to_string(number) + " wurde nicht gespeichert. "_ansi + why);
  if (host.current == &host.points.table && host.front_end != nullptr) host.front_end->PointChanged(0);
}

}  // extern "C"
