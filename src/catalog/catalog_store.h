// The one store of the process: defaults for points, settings, and the orders that the export by order shows.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "store/point_record.h"

namespace pktaus {

/// One point of an order. Plain, linked by `next`.
struct OrderPoint {
  char pt_no[24];
  char antragn[40];
  double east;   ///< metres
  double north;  ///< metres
  OrderPoint* next;
};

/// One order. Plain, linked by `next`.
struct OrderEntry {
  char auftrag[48];
  OrderPoint* points;  ///< the one added last stands first
  OrderEntry* next;
};

class CCatalogStore {
 public:
  CCatalogStore();
  CCatalogStore(const CCatalogStore&) = delete;
  CCatalogStore& operator=(const CCatalogStore&) = delete;

  std::int32_t catalog_number = 0;  ///< state whose catalogue is in force; 0 before the first
  /// What a point gets when it is given attributes for the first time: without a settings file the empty record with
  /// the first object type and state 13.
  PointRecord defaults;
  std::string organisation;
  std::string header_name;       ///< HEADER of the catalogue: file name of the state's NAS template
  std::string orig_xml;          ///< path of the original NAS file
  std::string point_xml_folder;  ///< folder of the reserved-number files
  OrderEntry* orders = nullptr;  ///< the order met last stands first

  /// Reads pktausout.ini beside the library and loads the catalogue of its state. Without that file or its section
  /// everything stays as made; a catalogue that is missing is not reported here.
  void LoadSettings();
  /// Writes the settings into pktausout.ini; other sections and plain keys of the file stay. False, with the last
  /// system error set, where that failed; the file stays as it was then.
  [[nodiscard]] bool SaveSettings() const;

  /// Puts the catalogue of a state in force (catalog/catalog.h), with its number and its template's name. False,
  /// without a message, where there is no such file: the lists are empty then. Object types beyond the rows of the
  /// table are named in one box, which is not shown again for the same ones.
  bool LoadCatalog(std::int32_t number);

  /// Copies `defaults` over the record, all fields. Gives 0.
  int defaults_copy(PointRecord* record) const;

  /// Frees all orders.
  void orders_clear();
  /// Puts a point at the head of its order, and an order that is new at the head of `orders`. Texts that do not fit are
  /// cut and reported.
  void order_add(const char* auftrag, const char* pt_no, const char* antragn, double east, double north);
  /// Adds all points of the host's table that have an order and an application number.
  void orders_collect();

 private:
  std::deque<OrderEntry> order_entries_;
  std::deque<OrderPoint> order_points_;
  std::unordered_map<std::string_view, OrderEntry*> order_of_;  // the one nearest to the head
};

/// Where the settings stand.
std::string SettingsPath();

/// The store, made with the settings of the file at the first call. It lives until the library is unloaded.
CCatalogStore* get_catalog_store();

}  // namespace pktaus
