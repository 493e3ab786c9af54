// Work on many points: look up, walk, choose in the export dialog, write.
#include <charconv>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/path.h"
#include "bench/pktaus_bench.h"
#include "bench/pktaus_bench_project.h"
#include "dialogs/export_dialog.h"
#include "entry/host/desktop.h"
#include "entry/host/host.h"
#include "nas/batch.h"
#include "store/point_table.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

std::string Metres(double value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr};
}

}  // namespace

int BenchLookup(const char* table, const char* names) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  Phases phases;
  std::ifstream file(names);
  std::vector<std::string> numbers;
  for (std::string name; std::getline(file, name);) numbers.push_back(name);
  long found = 0;
  double sum = 0;
  point_read_all(numbers, [&](std::size_t, const PointRecord& record) {
    ++found;
    sum += record.east;
  });
  phases.Mark("lookup");
  std::printf("%ld found, east %.3f\n", found, sum);
  return 0;
}

int BenchWalk(const char* table) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  Phases phases;
  long read = 0;
  double sum = 0;
  const std::int32_t count = point_count();
  for (std::int32_t i = 1; i <= count; ++i) {
    double east = 0, north = 0, elev = 0;
    char name[16];
    if (point_read_at(i, &east, &north, &elev, name, sizeof name) == 0) continue;
    ++read;
    sum += east + north + elev;
  }
  phases.Mark("walk");
  std::printf("%ld points, sum %.3f\n", read, sum);
  return 0;
}

int BenchBatch(const char* tmpl, long m, const char* out) {
  Phases phases;
  std::vector<BatchPoint> points(m);
  for (long n = 0; n < m; ++n) {
    points[n] = {.name = std::to_string(100001 + n),
                 .east = Metres(650000 + static_cast<double>(n % 9973) * 1.3571),
                 .north = Metres(5651000 + static_cast<double>(n / 9973) * 2.7183),
                 .gst = "2100",
                 .kst = "1000",
                 .her = "1000",
                 .zst = "0042",
                 .objid = {},
                 .filled = 1,
                 .next = n + 1 < m ? &points[n + 1] : nullptr};
  }
  phases.Mark("points");
  const std::string message = WriteBatchFile(points.data(), out, tmpl, "16", "A", "B");
  phases.Mark("write");
  std::printf("%s\n", message.c_str());
  return message.starts_with("Erfolgreich") ? 0 : 1;
}

/// Opens the dialog, ticks all and chooses; the picker is cancelled, so that nothing is written.
int BenchExportDialog(const char* table) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  std::ofstream(project.File("16Bench.XML")) << "<r/>";
  SetPluginFolder(project.folder());
  support::ScriptedDesktop desktop;
  Phases phases;
  std::string count;
  desktop.persons.push_back([&](toolkit::Dialog& dialog) {
    phases.Mark("open");
    dialog.Handle(toolkit::Pressed{7002});
    phases.Mark("tick");
    dialog.Handle(toolkit::Pressed{toolkit::kOk});
    phases.Mark("choose");
    count = static_cast<toolkit::TextField*>(dialog.Find(7010))->text;
  });
  export_dialog();
  std::printf("%s\n", count.c_str());
  return desktop.picks.size() == 1 ? 0 : 1;
}

}  // namespace pktaus
