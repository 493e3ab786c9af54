#include "catalog/catalog_store.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "base/text.h"
#include "catalog/catalog.h"
#include "entry/host/desktop.h"
#include "store/object_types.h"
#include "store/point_table.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr std::size_t kNamesShown = 10;

/// Names the object types that found no row, once for the same ones: the sheet loads a catalogue at every opening.
void ReportSurplus(const char* file_name, const std::vector<std::string>& names) {
  static std::string reported;
  if (names.empty()) return;
  std::string text = "Der Katalog ";
  text += file_name;
  text += " hat mehr als 7 Objektarten.\nNicht übernommen: "_ansi;
  for (std::size_t i = 0; i < std::min(names.size(), kNamesShown); ++i) text += (i > 0 ? ", " : "") + names[i];
  if (names.size() > kNamesShown) text += " und " + std::to_string(names.size() - kNamesShown) + " weitere";
  if (text == reported) return;
  reported = text;
  message_box(text, "Hinweis");
}

}  // namespace

CCatalogStore::CCatalogStore() : defaults{} {
  SetEmptyRecord(&defaults);
  defaults.bundesland = 13;
  defaults.oa = 0;
}

bool CCatalogStore::LoadCatalog(std::int32_t number) {
  char file_name[16];
  std::snprintf(file_name, sizeof file_name, "%02d.ini", number);
  CatalogFacts facts;
  if (!ReadCatalog(path::Join(plugin_folder(), file_name), &facts)) return false;
  catalog_number = number;
  if (facts.header) header_name = *facts.header;
  ReportSurplus(file_name, facts.surplus);
  return true;
}

int CCatalogStore::defaults_copy(PointRecord* record) const {
  *record = defaults;
  return 0;
}

void CCatalogStore::orders_clear() {
  orders = nullptr;
  order_of_.clear();
  order_points_.clear();
  order_entries_.clear();
}

void CCatalogStore::order_add(const char* auftrag, const char* pt_no, const char* antragn, double east, double north) {
  const auto known = order_of_.find(auftrag);
  OrderEntry* order = known != order_of_.end() ? known->second : nullptr;
  if (order == nullptr) {
    order = &order_entries_.emplace_back();
    put(order->auftrag, auftrag);
    order->next = orders;
    orders = order;
    order_of_[order->auftrag] = order;
  }
  OrderPoint& point = order_points_.emplace_back();
  put(point.pt_no, pt_no);
  put(point.antragn, antragn);
  point.east = east;
  point.north = north;
  point.next = order->points;
  order->points = &point;
}

void CCatalogStore::orders_collect() {
  point_walk_orders([this](const OrderRow& row) {
    if (*row.auftrag != '\0' && *row.antragn != '\0') {
      order_add(row.auftrag, row.point_number, row.antragn, row.east, row.north);
    }
  });
}

CCatalogStore* get_catalog_store() {
  static std::unique_ptr<CCatalogStore> store;
  if (store == nullptr) {
    store = std::make_unique<CCatalogStore>();
    store->LoadSettings();
  }
  return store.get();
}

}  // namespace pktaus
