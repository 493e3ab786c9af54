#include <gtest/gtest.h>

#include <string>

#include "catalog/catalog_store.h"
#include "store/point_table.h"
#include "tests/support/open_project.h"

namespace pktaus {
namespace {

/// "auftrag: point(antragn) ..." for each order, one after the other.
std::string Show(const CCatalogStore& store) {
  std::string all;
  for (const OrderEntry* order = store.orders; order != nullptr; order = order->next) {
    all += std::string(order->auftrag) + ":";
    for (const OrderPoint* point = order->points; point != nullptr; point = point->next) {
      all += std::string(" ") + point->pt_no + "(" + point->antragn + ")";
    }
    all += "\n";
  }
  return all;
}

TEST(Orders, RunInTheReverseOfTheirInsertion) {
  CCatalogStore store;
  store.orders_clear();
  store.order_add("A", "1", "x", 1, 2);
  store.order_add("a", "2", "", 3, 4);
  store.order_add("A", "3", "y", 5, 6);
  store.order_add("A", "1", "x", 7, 8);
  EXPECT_EQ(Show(store), "a: 2()\nA: 1(x) 3(y) 1(x)\n");
  EXPECT_EQ(store.orders->next->points->east, 7);
  EXPECT_EQ(store.orders->next->points->north, 8);
  store.orders_clear();
  EXPECT_EQ(store.orders, nullptr);
  store.order_add("A", "4", "z", 0, 0);
  EXPECT_EQ(Show(store), "A: 4(z)\n");
}

TEST(Orders, AreCollectedFromPointsWithBothNumbers) {
  support::TableFile table(support::PointColumns());
  const char* const kPoints[][3] = {{"1", "A", "x"}, {"2", "B", "x"}, {"3", "A", ""}, {"4", "", "x"}, {"5", "A", "y"}};
  for (const auto& [number, auftrag, antragn] : kPoints) {
    table.Add({{"PT_NO", number}, {"NE_AUFTRAG", auftrag}, {"NE_ANTRAGN", antragn}, {"EAST", "1.5"}, {"NORTH", "2.5"}});
  }
  const support::OpenProject project(std::move(table));
  columns_bind();
  CCatalogStore store;
  store.orders_collect();
  EXPECT_EQ(Show(store), "B: 2(x)\nA: 5(y) 1(x)\n");
  EXPECT_EQ(store.orders->points->east, 1.5);
  EXPECT_EQ(store.orders->points->north, 2.5);
}

}  // namespace
}  // namespace pktaus
