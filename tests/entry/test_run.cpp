// Runs of the plug-in under a host that writes down what it is asked, and fails where a test wants it to. What it is
// not asked in these runs are the operations of the host's stand-in.
#include <gtest/gtest.h>

#include "base/bounded.h"
#include "base/failure.h"
#include "platform/file.h"
#include "platform/system.h"
#include "tests/support/clock_at.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/table_file.h"

namespace {

struct Host {
  std::string calls;  // with what tells them apart; the binding of columns is one entry
  int count = 0;
  std::function<void(const std::string& call)> on_call = [](const std::string&) {};
  HostTable points{}, dba{}, dbv{};
  int dbh = 0;
  HostState state{};
} host;

std::string Text(int number) { return std::to_string(number); }
std::string Text(const void* handle) {
  if (handle == &host.points) return "points";
  return handle == &host.dba ? "dba" : handle == &host.dbv ? "dbv" : handle == &host.dbh ? "dbh" : "?";
}

template <class... Values>
void Note(std::string call, const Values&... values) {
  ((call += " " + Text(values)), ...);
  if (call == "f4ref" && host.calls.ends_with("f4ref, ")) return;
  host.calls += call + ", ";
  ++host.count;
  host.on_call(call);
}

}  // namespace

extern "C" {

int get_menu_no(void*, int, char*) { return Note("get_menu_no"), 0; }

void vm_dbk_open(HostTable* t, int a, int b) { Note("vm_dbk_open", t, a, b); }
void vm_dbk_close(HostTable* t) { Note("vm_dbk_close", t); }
void vm_dbk_nxk_select(HostTable* t) { Note("vm_dbk_nxk_select", t); }
void vm_dbk_nxs_select(HostTable* t) { Note("vm_dbk_nxs_select", t); }
void vm_dba_open(HostTable* t, int a) { Note("vm_dba_open", t, a); }
void vm_dba_close(HostTable* t) { Note("vm_dba_close", t); }
void vm_dba_nxh_select(HostTable* t) { Note("vm_dba_nxh_select", t); }
void vm_dbh_open(void* t, int a, int b) { Note("vm_dbh_open", t, a, b); }
void vm_dbh_close(void* t) { Note("vm_dbh_close", t); }
void vm_dbh_nxi_select(void* t) { Note("vm_dbh_nxi_select", t); }
void vm_dbh_nxo_select(void* t) { Note("vm_dbh_nxo_select", t); }
void vm_dbv_open(HostTable* t, int a, int b) { Note("vm_dbv_open", t, a, b); }
void vm_dbv_close(HostTable* t) { Note("vm_dbv_close", t); }
void vm_dbv_nxv_select(HostTable* t) { Note("vm_dbv_nxv_select", t); }
void vm_dbv_nxw_select(HostTable* t) { Note("vm_dbv_nxw_select", t); }

void d4select(void*) { Note("d4select"); }
void db_i_select(void*) { Note("db_i_select"); }
void* f4ref(const char*) { return Note("f4ref"), nullptr; }

}  // extern "C"

namespace pktaus {
namespace {

/// A project with an empty point table without any column of the system's own.
class Run : public testing::Test {
 protected:
  Run() {
    host = {};
    host.state.points = &host.points;
    host.state.dba = &host.dba;
    host.state.dbv = &host.dbv;
    host.state.dbh = &host.dbh;
    V2_VAR = &host.state;
    put(host.points.path, folder.Write("punkte.dbf", support::TableFile({{"PT_NO", 'C', 15}}).Bytes()).c_str());
    put(host.dba.path, folder.File("a.dbf").c_str());
    put(host.dbv.path, folder.File("v.dbf").c_str());
  }
  std::string Play() {
    host.calls.clear();
    host.count = 0;
    desktop.boxes.clear();
    EXPECT_EQ(pkt_aus(&V2_VAR), 0);
    return host.calls;
  }

  support::TempFolder folder;
  support::ScriptedDesktop desktop;
};

TEST_F(Run, ClosesExtendsDeletesOpensAndShowsTheMenu) {
  const std::string expected =
      "vm_dbk_close points, vm_dba_close dba, vm_dbv_close dbv, vm_dbh_open dbh 0 0, vm_dbh_close dbh, "
      "vm_dbk_open points 1 1, vm_dbk_nxk_select points, vm_dbk_nxs_select points, vm_dba_open dba 1, "
      "vm_dba_nxh_select dba, vm_dbh_open dbh 1 1, vm_dbh_nxi_select dbh, vm_dbh_nxo_select dbh, vm_dbv_open dbv 1 1, "
      "vm_dbv_nxv_select dbv, vm_dbv_nxw_select dbv, vm_dbk_nxk_select points, d4select, db_i_select, f4ref, "
      "get_menu_no, ";
  for (const char* derived : {"punkte.nxk", "punkte.nxs", "punkte.nxp", "punkte.nxr", "punkte.nxa", "punkte.nxc",
                              "a.nxh", "a.nxa", "v.nxv", "v.nxw", "v.nxd", "v.nxe", "v.nxf"}) {
    folder.Write(derived, "old");
  }
  for (const char* other : {"a.dbf", "a.nxk", "punkte.nxh"}) folder.Write(other, "kept");
  host.on_call = [this](const std::string& call) {
    const std::string table = support::BytesOf(folder.File("punkte.dbf"));
    EXPECT_EQ(table.find("NE_WEPO") != std::string::npos, host.count > 5) << call;
    if (call != "vm_dbk_open points 1 1") return;
    EXPECT_EQ(platform::ListFiles(folder.path(), "*"),
              (std::vector<std::string>{"a.dbf", "a.nxk", "punkte.dbf", "punkte.nxh"}));
  };
  EXPECT_EQ(Play(), expected);
  host.on_call = [](const std::string&) {};
  EXPECT_EQ(Play(), expected) << "the second time too";
  EXPECT_TRUE(desktop.boxes.empty());
  // Whatever fails ends the run with one box.
  const support::FaultLeaks leaks;
  const std::function<void()> kFailures[] = {[] { throw CException("x"); }, [] { throw new CException("x"); },
                                             [] { throw 1; }, [] { __builtin_trap(); }};
  const int all = host.count;
  for (int i = 1; i <= all; ++i) {
    host.on_call = [&](const std::string&) {
      if (host.count == i) kFailures[i % std::size(kFailures)]();
    };
    EXPECT_TRUE(expected.starts_with(Play())) << host.calls;
    EXPECT_EQ(host.count, i);
    EXPECT_EQ(desktop.boxes.size(), 1U) << host.calls;
  }
}

TEST_F(Run, ShowsOverflowsAndLeavesClockAndReportAsTheyWere) {
  const OverflowReport report = [](const char*, const char*) { ADD_FAILURE(); };
  SetOverflowReport(report);
  const support::ClockAt clock("2016-03-02T09:05:03");
  const platform::Clock* const before = &platform::CurrentClock();
  host.on_call = [&](const std::string& call) {
    char small[4];
    if (call == "vm_dbh_close dbh") put(small, "zu lang");
    if (call == "get_menu_no") platform::SetClock(nullptr);
  };
  Play();
  EXPECT_EQ(desktop.dialogs, std::vector<int>{7010});
  EXPECT_EQ(&platform::CurrentClock(), before);
  EXPECT_EQ(SetOverflowReport(nullptr), report);
}

TEST(Library, ExportsOneSymbolAndLacksNoneOfItsOwn) {
  const std::string symbols = "nm -D --format=just-symbols " PKTAUS_BIN_DIR "/libpkt_aus.so --";
  EXPECT_EQ(system(("test \"$(" + symbols + "defined-only)\" = pkt_aus").c_str()), 0);
  EXPECT_EQ(system(("! " + symbols + "undefined-only | grep -E '6pktaus|7toolkit|8platform'").c_str()), 0);
}

}  // namespace
}  // namespace pktaus
