// The host relies on the order in which its operations are called: each is noted here on its way to the stand-in.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "entry/host/host.h"
#include "store/point_table.h"
#include "tests/support/open_project.h"

namespace {

std::string calls;
std::map<void*, std::string> columns;

void Note(const std::string& call) { calls += call + " "; }

template <typename Operation>
Operation* Real(Operation*, const char* name) {
  return reinterpret_cast<Operation*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define REAL(operation) Real(&operation, #operation)
#define NOTED(result, operation, parameters, arguments, note) \
  result operation parameters {                               \
    Note(note);                                               \
    return REAL(operation) arguments;                         \
  }

NOTED(void, vm_dbk_nxk_select, (HostTable * table), (table), "nxk")
NOTED(void, d4select, (void* data), (data), "d4select")
NOTED(void, db_i_select, (void* index), (index), "db_i_select")
NOTED(std::int32_t, d4reccount, (), (), "count")
NOTED(void, vm_koor_clear, (HostPoint * point), (point), "clear")
NOTED(void, vm_dbk_read, (HostTable * table, HostPoint* point, std::int32_t number, std::int32_t* error),
      (table, point, number, error), "read" + std::to_string(number))
NOTED(void, d4go, (std::int32_t number), (number), "go" + std::to_string(number))
NOTED(const char*, f4str, (void* column), (column), columns[column])
NOTED(double, f4double, (void* column), (column), "#" + columns[column])
NOTED(void, f4r_str, (void* column, const char* text), (column, text), columns[column] + "='" + text + "'")
NOTED(void, f4r_double, (void* column, double value), (column, value),
      columns[column] + "=" + std::to_string(static_cast<int>(value)))
NOTED(void, db_write, (std::int32_t number), (number), "write" + std::to_string(number))

void* f4ref(const char* name) {
  Note(name);
  void* column = REAL(f4ref)(name);
  if (column != nullptr) columns[column] = name;
  return column;
}

namespace pktaus {
namespace {

const std::string kSelect = "nxk d4select db_i_select ";
const std::string kFound = kSelect + "count clear read1 clear read2 go2 ";

class HostCalls : public testing::Test {
 protected:
  HostCalls() : project_(Table()) {
    columns_bind();
    calls.clear();
  }
  static support::TableFile Table() {
    support::TableFile table(support::PointColumns());
    table.Add({{"PT_NO", "1"}, {"GMLID", "A"}});
    table.Add({{"PT_NO", "2"}, {"NE_PO", "1"}, {"GMLID", "B"}});
    table.Add({{"PT_NO", "3"}});
    return table;
  }
  support::OpenProject project_;
};

TEST_F(HostCalls, BindEveryColumn) {
  columns_bind();
  EXPECT_EQ(calls,
            kSelect +
                "NE_OA NE_ANTRAGN NE_AUFTRAG NE_PKN NE_PO NE_ABM NE_BZA NE_ART NE_ZST NE_KST NE_DAT NE_HER NE_GST "
                "NE_VTW NE_LZV NE_HIN NE_OBGID NE_AKTION NE_WEPO PKN_ABM_BZA NASTABLE GMLID ");
}

TEST_F(HostCalls, ReadAPoint) {
  PointRecord record{};
  EXPECT_EQ(point_read("2", &record), 0);
  EXPECT_EQ(calls, kFound +
                       "#NE_PO #NE_OA NE_ANTRAGN NE_AUFTRAG NE_PKN #NE_AKTION #NE_ABM #NE_BZA #NE_ART #NE_ZST #NE_KST "
                       "#NE_DAT #NE_HER #NE_GST #NE_VTW #NE_LZV #NE_HIN NE_OBGID GMLID NE_WEPO ");
}

TEST_F(HostCalls, WriteAPoint) {
  PointRecord record{};
  point_write("2", &record);
  EXPECT_EQ(calls, kFound +
                       "NE_OA=0 NE_PKN='' NE_ANTRAGN='' NE_AUFTRAG='' NE_PO=0 NE_AKTION=0 NE_ABM=0 NE_BZA=0 NE_ART=0 "
                       "NE_ZST=0 NE_KST=0 NE_DAT=0 NE_HER=0 NE_GST=0 NE_VTW=0 NE_LZV=0 NE_HIN=0 NE_OBGID='' write2 ");
  calls.clear();
  record.gmlid[0] = record.wepo[0] = 'x';
  point_write("2", &record);
  EXPECT_TRUE(calls.ends_with("NE_OBGID='' GMLID='x' NE_WEPO='x' write2 ")) << calls;
}

TEST_F(HostCalls, RemoveFindAndWalk) {
  point_remove("2");
  EXPECT_EQ(calls, kFound + "NE_PO=0 NE_ANTRAGN='' NE_AUFTRAG='' write2 ");

  double east, north, elev;
  char number[16];
  calls.clear();
  EXPECT_EQ(point_find_by_gid("B", number, &east, &north, sizeof number), 1);
  EXPECT_EQ(calls, kSelect + "count clear read1 go1 GMLID clear read2 go2 GMLID ");

  calls.clear();
  EXPECT_EQ(point_count(), 3);
  EXPECT_EQ(point_read_at(3, &east, &north, &elev, number, sizeof number), 1);
  EXPECT_EQ(calls, "nxk count nxk clear read3 ");
}

}  // namespace
}  // namespace pktaus
