// The point sheet on a big table: how often the table is walked, and how long the surveyor waits.
#include <dlfcn.h>

#include <cstdint>
#include <cstdio>

#include "bench/pktaus_bench.h"
#include "bench/pktaus_bench_project.h"
#include "catalog/catalog_store.h"
#include "dialogs/point_sheet.h"
#include "entry/host/desktop.h"
#include "entry/host/host.h"
#include "store/point_table.h"
#include "tests/support/scripted_desktop.h"

namespace {

std::int64_t records_read = 0;
const auto host_read = reinterpret_cast<decltype(&vm_dbk_read)>(dlsym(RTLD_NEXT, "vm_dbk_read"));

}  // namespace

// The program's own comes before the host's: a walk over the table is told by the records that are asked for.
void vm_dbk_read(HostTable* table, HostPoint* point, std::int32_t number, std::int32_t* error) {
  ++records_read;
  host_read(table, point, number, error);
}

namespace pktaus {
namespace {

/// The last point, the one that a search by number meets last.
HostPoint LastPoint() {
  HostPoint point{};
  for (std::int32_t record = point_count(); record > 0; --record) {
    if (point_read_at(record, &point.east, &point.north, &point.elev, point.pt_no, sizeof point.pt_no) == 1) break;
  }
  return point;
}

}  // namespace

/// With a catalogue that ships; it lies beside the program.
int BenchSheet(const char* table) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  support::ScriptedDesktop desktop;
  CCatalogStore& store = *get_catalog_store();
  store.defaults.bundesland = 16;
  store.LoadCatalog(16);
  const HostPoint point = LastPoint();
  records_read = 0;

  Phases phases;
  PointRecord record{};
  const int state = point_read(point.pt_no, &record);
  store.defaults_copy(&record);
  desktop.persons.push_back([&](toolkit::Dialog& dialog) {
    phases.Mark("open");
    std::printf("%.3f walks\n", static_cast<double>(records_read) / point_count());
    dialog.Handle(toolkit::Pressed{7012});
    dialog.Handle(toolkit::Pressed{toolkit::kOk});
  });
  const int result = point_sheet(point.pt_no, point.east, point.north, &record, state);
  phases.Mark("ok");
  std::printf("point %s, identifier %s\n", point.pt_no, record.pkn);
  return result == kSheetConfirmed ? 0 : 1;
}

}  // namespace pktaus
