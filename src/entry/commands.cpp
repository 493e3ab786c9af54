#include "entry/commands.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "dialogs/export_dialog.h"
#include "entry/host/host.h"
#include "platform/system.h"
#include "store/point_record.h"
#include "store/point_table.h"

namespace pktaus {

namespace {

// The numbers of the host's menu file.
enum Command { kLeave = 0, kDefaultValues = 2, kFindPoint = 4, kPickPoints = 6, kOrderExport = 8, kExport = 10 };

constexpr int kMenuNumber = 30;
constexpr std::size_t kMenuTextSize = 100;

void* menu = nullptr;

/// Reads the point that the surveyor has picked. Nothing changes it before its sheet is there.
void OpenPoint(const std::string& point_number) {
  PointRecord record{};
  point_read(point_number.c_str(), &record);
}

void PickPoints() {
  HostPoint point{};
  std::int32_t kept = 0;
  while (v2_point_ask(V2_VAR->points, &point, &kept, 0) == 0) {
    OpenPoint(std::string(point.pt_no, strnlen(point.pt_no, sizeof(point.pt_no))));
  }
}

void Run(int command) {
  switch (command) {
    case kPickPoints:
      PickPoints();
      break;
    case kExport:
      export_dialog();
      break;
    default:
      // Default values, search by identifier and output by order begin with dialogs that are not built yet; all other
      // numbers mean nothing.
      break;
  }
}

}  // namespace

void menu_loop() {
  char text[kMenuTextSize] = {};
  columns_bind();
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
