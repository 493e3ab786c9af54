// Runs of the plug-in under a host that writes down what it is asked, and fails where a test wants it to.
#include <gtest/gtest.h>
#include <signal.h>

#include <cstring>
#include <memory>

#include "base/bounded.h"
#include "base/failure.h"
#include "base/path.h"
#include "platform/file.h"
#include "platform/system.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/table_file.h"

HostState* V2_VAR = nullptr;
toolkit::Desktop* korvo_desktop = nullptr;

namespace {

using Calls = std::vector<std::string>;

struct Host {
  Calls calls;                    // with what tells them apart; the binding of columns is one entry
  std::deque<int> choices;        // in the menu; none left: 0
  std::deque<std::string> picks;  // none left: the picking ends
  std::function<void(const std::string& call)> on_call = [](const std::string&) {};
  HostTable points{}, dba{}, dbv{};
  int dbh = 0;
  HostState state{};
  HostState* state_pointer = nullptr;
} host;

std::string Text(int number) { return std::to_string(number); }
std::string Text(const char* text) { return text; }
std::string Text(const void* handle) {
  const void* const kHandles[] = {&host.points, &host.dba, &host.dbv, &host.dbh, nullptr};
  const char* const kNames[] = {"points", "dba", "dbv", "dbh", "null", "?"};
  return kNames[std::find(kHandles, std::end(kHandles), handle) - kHandles];
}

template <class... Values>
void Note(std::string call, const Values&... values) {
  ((call += " " + Text(values)), ...);
  if (call != "f4ref" || host.calls.back() != call) host.calls.push_back(call);
  host.on_call(call);
}

}  // namespace

extern "C" {

void _load_men(const char* name, void** menu, int number) {
  *menu = &host.state;
  Note("_load_men", name, number);
}
int get_menu_no(void* menu, int one, char* text) {
  Note(menu == &host.state && one == 1 && *text == '\0' ? "get_menu_no" : "get_menu_no with something else");
  return host.choices.empty() ? 0 : support::ScriptedDesktop::Next(&host.choices);
}
const char* ext(int number) {
  static std::string text;
  return (text = "x" + std::to_string(number)).c_str();
}
char* ext_change(char* dst, const char* path, const char* extension) {
  const std::string changed = std::string(path, std::strrchr(path, '.') + 1) + extension;
  Note("ext_change", std::string(path::FileName(changed)).c_str());
  return std::strcpy(dst, changed.c_str());
}
void strcdel(char*, int, int) {}

void vm_dbk_open(HostTable* t, int a, int b) { Note("vm_dbk_open", t, a, b); }
void vm_dbk_close(HostTable* t) { Note("vm_dbk_close", t); }
void vm_dbk_nxk_select(HostTable* t) { Note("vm_dbk_nxk_select", t); }
void vm_dbk_nxs_select(HostTable* t) { Note("vm_dbk_nxs_select", t); }
void vm_dbk_read(HostTable* t, HostPoint* point, std::int32_t number, std::int32_t* error) {
  Note("vm_dbk_read", t, number);
  pktaus::put(point->pt_no, "4711");
  *error = 0;
}
void vm_koor_clear(HostPoint* point) { *point = {}; }
int v2_point_ask(HostTable* t, HostPoint* point, std::int32_t* kept, int zero) {
  Note("v2_point_ask", t, (*kept)++, zero);
  if (host.picks.empty()) return 1;
  const std::string picked = support::ScriptedDesktop::Next(&host.picks);
  std::memcpy(point->pt_no, picked.c_str(), std::min<std::size_t>(16, picked.size() + 1));
  return 0;
}
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
std::int32_t d4reccount(void) { return 1; }
void d4go(std::int32_t) {}
void* f4ref(const char*) { return Note("f4ref"), nullptr; }
const char* f4str(void*) { return ""; }
double f4double(void*) { return 0; }
void f4r_str(void*, const char*) { ADD_FAILURE(); }
void f4r_double(void*, double) { ADD_FAILURE(); }
void db_write(std::int32_t) { ADD_FAILURE(); }

}  // extern "C"

namespace pktaus {
namespace {

class Desktop : public support::ScriptedDesktop {
 public:
  const platform::Clock& Clock() override { return *clock; }
  const platform::Clock* clock = &platform::SystemClock();
};

const Calls kClosing = {"vm_dbk_close points", "vm_dba_close dba", "vm_dbv_close dbv", "vm_dbh_open dbh 0 0",
                        "vm_dbh_close dbh"};
/// A project with an empty point table without any column of the system's own.
class Run : public testing::Test {
 protected:
  Run() {
    host = {};
    host.state.points = &host.points;
    host.state.dba = &host.dba;
    host.state.dbv = &host.dbv;
    host.state.dbh = &host.dbh;
    V2_VAR = host.state_pointer = &host.state;
    const support::TableFile table({{"PT_NO", 'C', 15}});
    put(host.points.path, folder.Write("punkte.dbf", table.Bytes()).c_str());
    put(host.dba.path, folder.File("a.dbf").c_str());
    put(host.dbv.path, folder.File("v.dbf").c_str());
  }
  Calls Play() {
    host.calls.clear();
    desktop.boxes.clear();
    EXPECT_EQ(pkt_aus(&host.state_pointer), 0);
    return host.calls;
  }

  support::TempFolder folder;
  Desktop desktop;
};

TEST_F(Run, ClosesExtendsDeletesOpensAndShowsTheMenu) {
  const Calls kDerived = {"punkte.x16", "punkte.x9", "punkte.x11", "punkte.x51", "punkte.x34", "punkte.x10", "a.x38",
                          "a.x34",      "v.x35",     "v.x36",      "v.x37",      "v.x48",      "v.x47"};
  Calls expected = kClosing;
  for (const std::string& name : kDerived) {
    folder.Write(name, "old");
    expected.push_back("ext_change " + name);
  }
  for (const char* call :
       {"vm_dbk_open points 1 1", "vm_dbk_nxk_select points", "vm_dbk_nxs_select points", "vm_dba_open dba 1",
        "vm_dba_nxh_select dba", "vm_dbh_open dbh 1 1", "vm_dbh_nxi_select dbh", "vm_dbh_nxo_select dbh",
        "vm_dbv_open dbv 1 1", "vm_dbv_nxv_select dbv", "vm_dbv_nxw_select dbv", "vm_dbk_nxk_select points", "d4select",
        "db_i_select", "f4ref", "_load_men PKTAUMEN 30", "get_menu_no"}) {
    expected.emplace_back(call);
  }
  for (const char* other : {"a.dbf", "punkte.x38", "punkte.x1", "a.x16"}) folder.Write(other, "kept");
  host.on_call = [this](const std::string& call) {
    const std::string table = support::BytesOf(folder.File("punkte.dbf"));
    EXPECT_EQ(table.find("NE_WEPO") != std::string::npos, host.calls.size() > kClosing.size()) << call;
    if (call != "vm_dbk_open points 1 1") return;
    EXPECT_EQ(platform::ListFiles(folder.path(), "*"),
              (Calls{"a.dbf", "a.x16", "punkte.dbf", "punkte.x1", "punkte.x38"}));
  };
  EXPECT_EQ(Play(), expected);
  host.on_call = [](const std::string&) {};
  EXPECT_EQ(Play(), expected);
  EXPECT_TRUE(desktop.boxes.empty());
  // Whatever fails ends the run with one box.
  const support::FaultLeaks leaks;
  const std::function<void()> kFailures[] = {[] { throw CException("x"); }, [] { throw new CException("x"); },
                                             [] { throw 1; }, [] { __builtin_trap(); }};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    host.on_call = [&](const std::string&) {
      if (host.calls.size() == i + 1) kFailures[i % std::size(kFailures)]();
    };
    EXPECT_EQ(Play(), Calls(expected.begin(), expected.begin() + static_cast<int>(i) + 1));
    EXPECT_EQ(desktop.boxes.size(), 1U) << expected[i];
  }
}

TEST_F(Run, DerivedFileWhosePathDoesNotFitIsLeftAlone) {
  std::string stem(69 - folder.File("").size() - 4, 'v');
  for (const int fits : {1, 0}) {
    put(host.dbv.path, folder.File(stem + ".d").c_str());
    const Calls calls = Play();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "ext_change " + stem + ".x35"), fits);
    stem += 'v';
  }
}

TEST_F(Run, WithoutAPointTableOneBoxSaysWhy) {
  const std::string missing = "src/entry/PKT_AUS.cpp:";
  const std::string broken = "CException:\n\tDie Punkttabelle '" + folder.File("punkte.dbf");
  HostState none{};
  const struct {
    const char* name;
    HostState* state;
    std::function<void()> prepare;
    Calls calls;
    std::string text;
  } kCases[] = {
      {"broken", &host.state, [&] { folder.Write("punkte.dbf", std::string(99, '\0')); }, kClosing, broken},
      {"file is missing", &host.state, [&] { platform::DeleteIfThere(host.points.path); }, kClosing, missing},
      {"no tables", &none, [] {}, {}, missing},
      {"no state", nullptr, [] {}, {}, missing},
  };
  for (const auto& c : kCases) {
    c.prepare();
    host.state_pointer = c.state;
    EXPECT_EQ(Play(), c.calls) << c.name;
    ASSERT_EQ(desktop.boxes.size(), 1U) << c.name;
    const std::string& text = desktop.boxes[0].text;
    EXPECT_TRUE(text.starts_with(c.text)) << text;
    EXPECT_EQ(text.ends_with(":" + platform::SystemErrorText(ENOENT)), c.text == missing) << text;
  }
}

TEST_F(Run, LeavesClockReportAndHandlersAsTheyWereAlsoAfterAFault) {
  const support::FaultLeaks leaks;
  const std::unique_ptr<platform::Clock> hosts_clock(platform::NewStandingClock("2016-03-02T09:05:03", "UTC"));
  desktop.clock = hosts_clock.get();
  const OverflowReport report = [](const char*, const char*) {};
  SetOverflowReport(report);
  const auto ignored = signal(SIGFPE, SIG_IGN);
  host.on_call = [&](const std::string& call) {
    char small[4];
    EXPECT_EQ(&platform::CurrentClock(), hosts_clock.get());
    if (call == "vm_dbh_close dbh") put(small, "zu lang");
    if (call == "get_menu_no") __builtin_trap();
  };
  Play();
  EXPECT_EQ(desktop.dialogs, std::vector<int>{7010}) << "the overflow is shown";
  EXPECT_EQ(&platform::CurrentClock(), &platform::SystemClock());
  EXPECT_EQ(SetOverflowReport(nullptr), report);
  EXPECT_EQ(signal(SIGFPE, ignored), SIG_IGN);
}

TEST_F(Run, DoesTheCommandsAndPassesOverOddNumbers) {
  host.choices = {1, 3, -2, 11, 12, 4, 8, 9, 6, 2, 10};
  host.picks = {"4711", "sechzehn Zeichen"};
  Calls asked = Play();
  std::erase_if(asked, [](const std::string& call) {
    return !call.starts_with("v2_") && !call.starts_with("get") && !call.starts_with("vm_dbk_read");
  });
  Calls expected(7, "get_menu_no");
  expected.insert(expected.end(), {"vm_dbk_read points 1", "get_menu_no", "get_menu_no"});
  for (const char* number : {"0", "1", "2"}) {
    expected.push_back(std::string("v2_point_ask points ") + number + " 0");
    expected.push_back(*number == '2' ? "get_menu_no" : "vm_dbk_read points 1");
  }
  asked.resize(expected.size());
  EXPECT_EQ(asked, expected);
  EXPECT_EQ(desktop.dialogs, (std::vector<int>{7019, 7003, 7020, 7020, 7020, 7000}));
}

TEST(Library, ExportsOneSymbolAndLacksNoneOfItsOwn) {
  const std::string symbols = "nm -D --format=just-symbols " PKTAUS_BIN_DIR "/libpkt_aus.so --";
  EXPECT_EQ(system(("test \"$(" + symbols + "defined-only)\" = pkt_aus").c_str()), 0);
  EXPECT_EQ(system(("! " + symbols + "undefined-only | grep -E '6pktaus|7toolkit|8platform'").c_str()), 0);
}

}  // namespace
}  // namespace pktaus
