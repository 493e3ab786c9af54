#include "tests/entry/recording_host.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/bounded.h"
#include "base/path.h"

HostState* V2_VAR = nullptr;
toolkit::Desktop* korvo_desktop = nullptr;

namespace recording {
namespace {

Host* current = nullptr;

void Note(const std::string& call) {
  if (call != "f4ref" || current->calls.back() != call) current->calls.push_back(call);
  current->on_call(call);
}

std::string Name(const void* handle) {
  if (handle == nullptr) return " null";
  if (handle == &current->points) return " points";
  if (handle == &current->dba) return " dba";
  if (handle == &current->dbv) return " dbv";
  return handle == &current->dbh ? " dbh" : " ?";
}

std::string Numbers(int a, int b) { return " " + std::to_string(a) + " " + std::to_string(b); }

}  // namespace

Host::Host() {
  current = this;
  V2_VAR = &state;
  state.points = &points;
  state.dba = &dba;
  state.dbv = &dbv;
  state.dbh = &dbh;
}

Host::~Host() {
  V2_VAR = nullptr;
  current = nullptr;
}

}  // namespace recording

using recording::current;
using recording::Name;
using recording::Note;
using recording::Numbers;

extern "C" {

void _load_men(const char* name, void** menu, int number) {
  *menu = &current->state;
  Note(std::string("_load_men ") + name + " " + std::to_string(number));
}
int get_menu_no(void* menu, int one, char* text) {
  Note(menu == &current->state && one == 1 && *text == '\0' ? "get_menu_no" : "get_menu_no with something else");
  if (current->choices.empty()) return 0;
  const int choice = current->choices.front();
  current->choices.pop_front();
  return choice;
}
const char* ext(int number) {
  static char text[8];
  std::snprintf(text, sizeof(text), "x%d", number);
  return text;
}
char* ext_change(char* dst, const char* path, const char* extension) {
  const std::string changed = std::string(path, std::strrchr(path, '.') + 1) + extension;
  Note("ext_change " + std::string(path::FileName(changed)));
  return static_cast<char*>(std::memcpy(dst, changed.c_str(), changed.size() + 1));
}
void strcdel(char*, int, int) { Note("strcdel"); }

void vm_dbk_open(HostTable* t, int a, int b) { Note("vm_dbk_open" + Name(t) + Numbers(a, b)); }
void vm_dbk_close(HostTable* t) { Note("vm_dbk_close" + Name(t)); }
void vm_dbk_nxk_select(HostTable* t) { Note("vm_dbk_nxk_select" + Name(t)); }
void vm_dbk_nxs_select(HostTable* t) { Note("vm_dbk_nxs_select" + Name(t)); }
void vm_dbk_read(HostTable* t, HostPoint* point, std::int32_t number, std::int32_t* error) {
  Note("vm_dbk_read" + Name(t) + " " + std::to_string(number));
  pktaus::put(point->pt_no, "4711");
  *error = 0;
}
void vm_koor_clear(HostPoint* point) { *point = {}; }
int v2_point_ask(HostTable* t, HostPoint* point, std::int32_t* kept, int zero) {
  Note("v2_point_ask" + Name(t) + Numbers((*kept)++, zero));
  if (current->picks.empty()) return 1;
  std::memcpy(point->pt_no, current->picks.front().data(),
              std::min<std::size_t>(16, current->picks.front().size() + 1));
  current->picks.pop_front();
  return 0;
}
void vm_dba_open(HostTable* t, int a) { Note("vm_dba_open" + Name(t) + " " + std::to_string(a)); }
void vm_dba_close(HostTable* t) { Note("vm_dba_close" + Name(t)); }
void vm_dba_nxh_select(HostTable* t) { Note("vm_dba_nxh_select" + Name(t)); }
void vm_dbh_open(void* t, int a, int b) { Note("vm_dbh_open" + Name(t) + Numbers(a, b)); }
void vm_dbh_close(void* t) { Note("vm_dbh_close" + Name(t)); }
void vm_dbh_nxi_select(void* t) { Note("vm_dbh_nxi_select" + Name(t)); }
void vm_dbh_nxo_select(void* t) { Note("vm_dbh_nxo_select" + Name(t)); }
void vm_dbv_open(HostTable* t, int a, int b) { Note("vm_dbv_open" + Name(t) + Numbers(a, b)); }
void vm_dbv_close(HostTable* t) { Note("vm_dbv_close" + Name(t)); }
void vm_dbv_nxv_select(HostTable* t) { Note("vm_dbv_nxv_select" + Name(t)); }
void vm_dbv_nxw_select(HostTable* t) { Note("vm_dbv_nxw_select" + Name(t)); }

void d4select(void*) { Note("d4select"); }
void db_i_select(void*) { Note("db_i_select"); }
std::int32_t d4reccount(void) { return 1; }
void d4go(std::int32_t number) { Note("d4go " + std::to_string(number)); }
void* f4ref(const char*) {
  Note("f4ref");
  return nullptr;
}
const char* f4str(void*) { return ""; }
double f4double(void*) { return 0; }
void f4r_str(void*, const char*) { Note("f4r_str"); }
void f4r_double(void*, double) { Note("f4r_double"); }
void db_write(std::int32_t number) { Note("db_write " + std::to_string(number)); }

}  // extern "C"
