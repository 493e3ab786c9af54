#include "entry/commands.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "base/text.h"
#include "catalog/catalog_store.h"
#include "dialogs/adopt_data_dialog.h"
#include "dialogs/export_dialog.h"
#include "dialogs/gid_search_dialog.h"
#include "dialogs/order_export_dialog.h"
#include "dialogs/point_sheet.h"
#include "entry/host/desktop.h"
#include "entry/host/host.h"
#include "platform/system.h"
#include "store/point_record.h"
#include "store/point_table.h"

namespace pktaus {

using namespace text::literals;

namespace {

// The numbers of the host's menu file.
enum Command { kLeave = 0, kDefaultValues = 2, kFindPoint = 4, kPickPoints = 6, kOrderExport = 8, kExport = 10 };

/// What point_read gives for a point that has none.
constexpr int kNoAttributes = 1;

constexpr int kMenuNumber = 30;
constexpr std::size_t kMenuTextSize = 100;

void* menu = nullptr;

/// Lets the surveyor give a point its attributes. The coordinates are those that he has picked.
void OpenPoint(const char* point_number, double east, double north) {
  // Without a number the sheet would edit the defaults.
  if (*point_number == '\0') {
    message_box("Der Punkt hat keine Punktnummer und kann keine Angaben bekommen.", "Hinweis");
    return;
  }
  if (!point_refusal().empty()) {
    message_box(point_refusal(), "Fehler");
    return;
  }
  PointRecord record{};
  const int state = point_read(point_number, &record);
  if (state == kNoAttributes) {
    get_catalog_store()->defaults_copy(&record);
    if (point_adopt_imported(point_number, &record) < 0) return;
  }
  const int result = point_sheet(point_number, east, north, &record, state);
  if (result == kSheetConfirmed) point_write(point_number, &record);
  if (result == kSheetRemove) point_remove(point_number);
}

/// The sheet stores the values itself.
void EditDefaultValues() {
  PointRecord record{};
  get_catalog_store()->defaults_copy(&record);
  point_sheet(nullptr, 0.0, 0.0, &record, kNoAttributes);
}

void FindPoint() {
  double east = 0.0, north = 0.0;
  char number[81] = "";
  if (gid_search(&east, &north, number, sizeof number) != nullptr) OpenPoint(number, east, north);
}

void ExportOrders() {
  CCatalogStore& store = *get_catalog_store();
  store.orders_clear();
  store.orders_collect();
  order_export_dialog();
}

void PickPoints() {
  HostPoint point{};
  std::int32_t kept = 0;
  while (v2_point_ask(V2_VAR->points, &point, &kept, 0) == 0) {
    const std::string number(point.pt_no, strnlen(point.pt_no, sizeof(point.pt_no)));
    OpenPoint(number.c_str(), point.east, point.north);
  }
}

void Run(int command) {
  switch (command) {
    case kDefaultValues:
      EditDefaultValues();
      break;
    case kFindPoint:
      FindPoint();
      break;
    case kPickPoints:
      PickPoints();
      break;
    case kOrderExport:
      ExportOrders();
      break;
    case kExport:
      export_dialog();
      break;
    default:
      break;
  }
}

/// Says before any command what the table lacks where it could not be extended: what is stored there would be lost.
void RefuseWithoutColumns(int extend_error) {
  point_refuse({});
  const std::string missing = extend_error != 0 ? columns_missing() : "";
  if (missing.empty()) return;
  point_refuse("Der Punkttabelle fehlen Spalten, es kann nichts gespeichert werden: "_ansi +
               platform::SystemErrorText(extend_error));
  message_box(
      "Der Punkttabelle fehlen die Spalten "_ansi + missing + ". Sie konnten nicht ergänzt werden: "_ansi +
          platform::SystemErrorText(extend_error) +
          " Es kann nichts gespeichert werden, bis das Modul die Tabelle schreiben kann und neu gestartet ist."_ansi,
      "Fehler");
}

}  // namespace

void menu_loop(int extend_error) {
  char text[kMenuTextSize] = {};
  columns_bind();
  settings_failure_told = false;
  RefuseWithoutColumns(extend_error);
  _load_men("PKTAUMEN", &menu, kMenuNumber);
  for (;;) {
    // An error that an earlier command lived through must not be told as the reason of a later failure.
    platform::SetLastSystemError(0);
    const int command = get_menu_no(menu, 1, text);
    Run(command);
    if (command == kLeave) return;
  }
}

}  // namespace pktaus
