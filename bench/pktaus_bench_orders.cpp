// The road of an order: search what the original file says, collect the orders, list one, write it.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "base/bounded.h"
#include "bench/pktaus_bench.h"
#include "bench/pktaus_bench_project.h"
#include "catalog/catalog_store.h"
#include "catalog/original_file.h"
#include "dialogs/order_export_dialog.h"
#include "entry/host/desktop.h"
#include "nas/order_file.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

constexpr int kState = 16;
constexpr toolkit::ControlId kAllOn = 7002;
constexpr toolkit::ControlId kCount = 7010;

std::string TextOf(toolkit::Dialog& dialog, toolkit::ControlId id) {
  return static_cast<toolkit::TextField*>(dialog.Find(id))->text;
}

}  // namespace

/// A file with one identifier is the single search of a command, more are those of one order.
int BenchSearch(const char* file, const char* ids) {
  std::vector<std::string> wanted;
  std::ifstream list(ids);
  for (std::string id; std::getline(list, id);) wanted.push_back(id);
  Phases phases;
  OriginalFile original(file);
  std::size_t found = 0, further = 0;
  OriginalExtract extract;
  for (const std::string& id : wanted) {
    const std::unique_ptr<PointRecord> record =
        wanted.size() == 1 ? SearchOriginalFile(file, id.c_str(), &extract) : original.Search(id.c_str(), &extract);
    if (record == nullptr) continue;
    ++found;
    further += record->wepo[0] != '\0';
  }
  phases.Mark("search");
  std::printf("%zu of %zu found, %zu with further position objects\n", found, wanted.size(), further);
  return found == wanted.size() ? 0 : 1;
}

/// The largest order is the first in the dialog's list.
int BenchOrders(const char* table) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  support::ScriptedDesktop desktop;
  Phases phases;
  get_catalog_store()->orders_collect();
  phases.Mark("collect");
  std::string count;
  desktop.persons.push_back([&](toolkit::Dialog& dialog) {
    phases.Mark("list");
    count = TextOf(dialog, kCount);
  });
  order_export_dialog();
  std::printf("%s\n", count.c_str());
  get_catalog_store()->orders_clear();
  return count.empty() ? 1 : 0;
}

/// Writes the first order of the list whole.
int BenchExport(const char* folder, const char* table, const char* original, const char* out) {
  const BenchProject project(table);
  if (!project.open()) return 1;
  SetPluginFolder(folder);
  support::ScriptedDesktop desktop;
  CCatalogStore& store = *get_catalog_store();
  Phases phases;
  if (!store.LoadCatalog(kState)) return 1;
  store.orig_xml = original;
  store.organisation = "Vermessung Musterstadt";
  store.orders_collect();
  desktop.persons.push_back([&](toolkit::Dialog& dialog) {
    phases.Mark("list");
    dialog.Handle(toolkit::Pressed{kAllOn});
    dialog.Handle(toolkit::Pressed{toolkit::kOk});
  });
  desktop.paths.emplace_back(out);
  order_export_dialog();
  phases.Mark("write");
  for (const auto& box : desktop.boxes) std::printf("%s\n", box.text.c_str());
  return !desktop.boxes.empty() && desktop.boxes.back().text.starts_with("Erfolgreich") ? 0 : 1;
}

/// `m` new points of an order, without the dialog.
int BenchOrderFile(long m, const char* out) {
  CCatalogStore& store = *get_catalog_store();
  Phases phases;
  if (!store.LoadCatalog(kState)) return 1;
  std::vector<PointRecord> points(m);
  for (long n = 0; n < m; ++n) {
    PointRecord& point = points[n];
    point.east = 650000 + static_cast<double>(n % 9973) * 1.3571;
    point.north = 5651000 + static_cast<double>(n / 9973) * 2.7183;
    point.po = kPoTA;
    point.bundesland = kState;
    point.oa = 4;
    point.abm = 1110;
    point.zst = 42;
    point.kst = 1000;
    point.hin = 1110;
    point.her = 1000;
    point.gst = 2100;
    point.bza = point.vtw = kNoChoice;
    point.lzv = kLzvNotGiven;
    put(point.pkn, ("32650565" + std::to_string(1000001 + n)).c_str());
    put(point.antragn, "2026-0042");
    put(point.auftrag, "A00000");
    point.next = n + 1 < m ? &points[n + 1] : nullptr;
  }
  phases.Mark("points");
  const std::string message = WriteOrderFile(out, store.header_name, points.data(), static_cast<std::int32_t>(m),
                                             "Vermessung Musterstadt", std::to_string(kState));
  phases.Mark("write");
  std::printf("%s\n", message.c_str());
  return message.starts_with("Erfolgreich") ? 0 : 1;
}

}  // namespace pktaus
