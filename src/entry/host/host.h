// The host's operations and records, by the host's own names. This system only declares them: the loading program
// brings them, and they are found when the library is loaded.
#pragma once

#include <cstddef>
#include <cstdint>

namespace toolkit {
class Desktop;
}

extern "C" {

/// Handle of one of the host's tables. `path` is the full path of its file with the extension, in the host's code page.
struct HostTable {
  char reserved_0[4];
  char path[72];
  void* data;  ///< for d4select; read for the point table only
  char reserved_80[4];
  void* index;  ///< for db_i_select; read for the point table only
};

/// The host's state. Each of the four handles may be null.
struct HostState {
  char reserved_0[32];
  HostTable* points;  ///< vm_dbk_*
  HostTable* dba;     ///< vm_dba_*
  HostTable* dbv;     ///< vm_dbv_*
  char reserved_44[5320];
  void* dbh;  ///< vm_dbh_*
};

/// The host's record of a point. Texts NUL-terminated, lengths in metres.
struct HostPoint {
  char pt_no[16];
  double east;
  double north;
  double elev;
  char reserved_40[120];
};

// The host reads and writes these records by address: where pointers have its size, every offset is the host's.
static_assert(offsetof(HostPoint, east) == 16 && offsetof(HostPoint, north) == 24 && offsetof(HostPoint, elev) == 32);
static_assert(sizeof(HostPoint) == 160);
static_assert(sizeof(void*) != 4 ||
              (offsetof(HostTable, path) == 4 && offsetof(HostTable, data) == 76 && offsetof(HostTable, index) == 84));
static_assert(sizeof(void*) != 4 || (offsetof(HostState, points) == 32 && offsetof(HostState, dba) == 36 &&
                                     offsetof(HostState, dbv) == 40 && offsetof(HostState, dbh) == 5364));

extern HostState* V2_VAR;

/// The front end of the loading program.
extern toolkit::Desktop* korvo_desktop;

void _load_men(const char* name, void** menu, int number);
/// Shows the menu and waits; the number of the choice, 0 when the user leaves it. `text` has 100 characters.
int get_menu_no(void* menu, int one, char* text);
/// Text of the file extension under a number; the host's, valid for the program's life.
const char* ext(int number);
/// Writes `path` with its extension replaced into `dst`, an array of 70 characters. Gives `dst`.
char* ext_change(char* dst, const char* path, const char* extension);
/// Removes `character` where it pads the text, in place.
void strcdel(char* text, int character, int one);

void vm_dbk_open(HostTable* table, int, int);
void vm_dbk_close(HostTable* table);
void vm_dbk_nxk_select(HostTable* table);
void vm_dbk_nxs_select(HostTable* table);
/// Fills `point` from record `number` (from 1) and sets `error` on every call: 0 read, otherwise not.
void vm_dbk_read(HostTable* table, HostPoint* point, std::int32_t number, std::int32_t* error);
void vm_koor_clear(HostPoint* point);
/// Lets the user pick a point: 0 and `point` filled; anything else ends the picking.
int v2_point_ask(HostTable* table, HostPoint* point, std::int32_t* kept, int zero);

void vm_dba_open(HostTable* table, int);
void vm_dba_close(HostTable* table);
void vm_dba_nxh_select(HostTable* table);

void vm_dbh_open(void* table, int, int);
void vm_dbh_close(void* table);
void vm_dbh_nxi_select(void* table);
void vm_dbh_nxo_select(void* table);

void vm_dbv_open(HostTable* table, int, int);
void vm_dbv_close(HostTable* table);
void vm_dbv_nxv_select(HostTable* table);
void vm_dbv_nxw_select(HostTable* table);

void d4select(void* data);
void db_i_select(void* index);
std::int32_t d4reccount(void);
void d4go(std::int32_t number);
/// A reference to a column of the current table, null if there is none; found by the first ten characters.
void* f4ref(const char* name);
/// The column's full width, padded with blanks, NUL-terminated, valid until the next call. Empty for a null reference.
const char* f4str(void* column);
/// 0 for blanks and for a null reference.
double f4double(void* column);
/// A null reference swallows the value.
void f4r_str(void* column, const char* text);
void f4r_double(void* column, double value);
void db_write(std::int32_t number);

/// The library's one entry. `state` leads to the pointer that V2_VAR holds too. Gives 0 always.
[[gnu::visibility("default")]] std::int32_t pkt_aus(HostState** state);

}  // extern "C"
