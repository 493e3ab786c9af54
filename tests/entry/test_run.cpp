#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/bounded.h"
#include "base/failure.h"
#include "base/text.h"
#include "platform/system.h"
#include "tests/entry/recording_host.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

using namespace text::literals;

namespace pktaus {
namespace {

using Calls = std::vector<std::string>;

class Desktop : public support::ScriptedDesktop {
 public:
  const platform::Clock& Clock() override { return *clock; }
  const platform::Clock* clock = &platform::SystemClock();
};

/// A project with an empty point table without any column of the system's own.
class Run : public testing::Test {
 protected:
  Run() {
    std::string bytes("\x03\x74\x01\x01\0\0\0\0\x41\0\x10", 11);
    bytes.resize(32);
    bytes += std::string("PT_NO\0\0\0\0\0\0C\0\0\0\0\x0f", 17);
    bytes.resize(64);
    bytes += "\x0d\x1a";
    put(host.points.path, folder.Write("punkte.dbf", bytes).c_str());
    put(host.dba.path, folder.File("a.dbf").c_str());
    put(host.dbv.path, folder.File("v.dbf").c_str());
  }

  bool IsExtended() const { return support::BytesOf(folder.File("punkte.dbf")).find("NE_WEPO") != std::string::npos; }

  support::TempFolder folder;
  recording::Host host;
  Desktop desktop;
};

const Calls kClosing = {"vm_dbk_close points", "vm_dba_close dba", "vm_dbv_close dbv", "vm_dbh_open dbh 0 0",
                        "vm_dbh_close dbh"};
const Calls kDeleting = {"ext_change punkte.x16", "ext_change punkte.x9",  "ext_change punkte.x11",
                         "ext_change punkte.x51", "ext_change punkte.x34", "ext_change punkte.x10",
                         "ext_change a.x38",      "ext_change a.x34",      "ext_change v.x35",
                         "ext_change v.x36",      "ext_change v.x37",      "ext_change v.x48",
                         "ext_change v.x47"};
const Calls kOpening = {"vm_dbk_open points 1 1", "vm_dbk_nxk_select points", "vm_dbk_nxs_select points",
                        "vm_dba_open dba 1",      "vm_dba_nxh_select dba",    "vm_dbh_open dbh 1 1",
                        "vm_dbh_nxi_select dbh",  "vm_dbh_nxo_select dbh",    "vm_dbv_open dbv 1 1",
                        "vm_dbv_nxv_select dbv",  "vm_dbv_nxw_select dbv"};
const Calls kMenu = {"vm_dbk_nxk_select points", "d4select",   "db_i_select", "f4ref",
                     "_load_men PKTAUMEN 30",    "get_menu_no"};

Calls Joined(std::initializer_list<Calls> parts) {
  Calls all;
  for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST_F(Run, ClosesExtendsDeletesOpensAndShowsTheMenu) {
  for (const char* derived : {"punkte.x16", "punkte.x10", "a.x38", "v.x47"}) folder.Write(derived, "old");
  for (const char* other : {"a.dbf", "punkte.x38", "punkte.x1", "a.x16"}) folder.Write(other, "kept");
  host.on_call = [this](const std::string& call) {
    EXPECT_EQ(IsExtended(), host.calls.size() > kClosing.size()) << call;
    if (call != "vm_dbk_open points 1 1") return;
    for (const char* derived : {"punkte.x16", "punkte.x10", "a.x38", "v.x47"}) {
      EXPECT_NE(access(folder.File(derived).c_str(), F_OK), 0) << derived;
    }
    for (const char* other : {"a.dbf", "punkte.x38", "punkte.x1", "a.x16"}) {
      EXPECT_EQ(support::BytesOf(folder.File(other)), "kept") << other;
    }
  };
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(pkt_aus(&host.state_pointer), 0);
    EXPECT_EQ(host.calls, Joined({kClosing, kDeleting, kOpening, kMenu}));
    host.on_call = [](const std::string&) {};
    host.calls.clear();
  }
  EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(Run, DerivedFileWhosePathDoesNotFitIsLeftAlone) {
  const std::string room(69 - folder.File("").size() - 4, 'v');
  put(host.dbv.path, folder.File(room + ".d").c_str());
  put(host.dba.path, folder.File(room.substr(1) + ".dbf").c_str());
  pkt_aus(&host.state_pointer);
  const auto count = [this](const std::string& call) { return std::count(host.calls.begin(), host.calls.end(), call); };
  EXPECT_EQ(count("ext_change " + room + ".x35"), 1) << "69 characters";
  EXPECT_EQ(count("ext_change " + room.substr(1) + ".x38"), 1);
  put(host.dbv.path, folder.File(room + "v.d").c_str());
  host.calls.clear();
  pkt_aus(&host.state_pointer);
  EXPECT_EQ(count("ext_change " + room + "v.x35"), 0) << "70 characters";
  EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(Run, ClosesOnlyTheTablesThatTheHostHas) {
  host.state.dba = nullptr;
  host.state.dbv = nullptr;
  host.state.dbh = nullptr;
  pkt_aus(&host.state_pointer);
  EXPECT_EQ(host.calls[0], "vm_dbk_close points");
  EXPECT_EQ(host.calls[1], "ext_change punkte.x16");
  EXPECT_EQ(host.calls.back(), "get_menu_no");
}

TEST_F(Run, WithoutAPointTableOneBoxSaysThatTheFileIsNotThere) {
  HostState* no_state = nullptr;
  const struct {
    const char* name;
    HostState** state;
    HostTable* points;
    Calls calls;
  } kCases[] = {
      {"file is missing", &host.state_pointer, &host.points, kClosing},
      {"no handle", &host.state_pointer, nullptr, Calls(kClosing.begin() + 1, kClosing.end())},
      {"no state", &no_state, &host.points, {}},
      {"nothing", nullptr, &host.points, {}},
  };
  std::remove(host.points.path);
  for (const auto& c : kCases) {
    host.calls.clear();
    host.state.points = c.points;
    EXPECT_EQ(pkt_aus(c.state), 0);
    EXPECT_EQ(host.calls, c.calls) << c.name;
    ASSERT_EQ(desktop.boxes.size(), 1U) << c.name;
    EXPECT_EQ(desktop.boxes[0].title, "Fehler Aufgetreten");
    EXPECT_TRUE(desktop.boxes[0].text.starts_with("src/entry/PKT_AUS.cpp:")) << desktop.boxes[0].text;
    EXPECT_TRUE(desktop.boxes[0].text.ends_with(":" + platform::SystemErrorText(ENOENT))) << desktop.boxes[0].text;
    desktop.boxes.clear();
  }
}

TEST_F(Run, ATableThatIsBrokenIsToldAndStaysAsItWas) {
  const std::string broken = folder.Write("punkte.dbf", std::string(100, '\0'));
  EXPECT_EQ(pkt_aus(&host.state_pointer), 0);
  EXPECT_EQ(host.calls, kClosing);
  ASSERT_EQ(desktop.boxes.size(), 1U);
  EXPECT_EQ(desktop.boxes[0].title, "Fehler Aufgetreten!");
  EXPECT_TRUE(desktop.boxes[0].text.starts_with("CException:\n\tDie Punkttabelle '" + broken)) << desktop.boxes[0].text;
  EXPECT_EQ(support::BytesOf(broken), std::string(100, '\0'));
}

TEST_F(Run, AFailureInAnyOperationEndsTheRunWithOneBox) {
  const support::FaultLeaks leaks;
  const std::function<void()> kFailures[] = {
      [] { throw CException("x"); },
      [] { throw new CException("x"); },
      [] { throw 1; },
      [] { __builtin_trap(); },
  };
  pkt_aus(&host.state_pointer);
  const Calls whole = std::exchange(host.calls, {});
  for (std::size_t i = 0; i < whole.size(); ++i) {
    host.on_call = [&](const std::string&) {
      if (host.calls.size() == i + 1) kFailures[i % std::size(kFailures)]();
    };
    EXPECT_EQ(pkt_aus(&host.state_pointer), 0);
    EXPECT_EQ(host.calls, Calls(whole.begin(), whole.begin() + static_cast<int>(i) + 1));
    EXPECT_EQ(desktop.boxes.size(), 1U) << whole[i];
    desktop.boxes.clear();
    host.calls.clear();
  }
}

TEST_F(Run, LeavesClockReportAndHandlersAsTheyWereAlsoAfterAFault) {
  const support::FaultLeaks leaks;
  const std::unique_ptr<platform::Clock> hosts_clock(platform::NewStandingClock("2016-03-02T09:05:03", "UTC"));
  desktop.clock = hosts_clock.get();
  const platform::Clock* before = &platform::CurrentClock();
  const OverflowReport report = [](const char*, const char*) {};
  SetOverflowReport(report);
  struct sigaction action = {};
  action.sa_handler = SIG_IGN;
  struct sigaction kept = {};
  sigaction(SIGFPE, &action, &kept);
  host.on_call = [&](const std::string& call) {
    char small[4];
    EXPECT_EQ(&platform::CurrentClock(), hosts_clock.get());
    if (call == "vm_dbh_close dbh") put(small, "zu lang");
    if (call == "get_menu_no") __builtin_trap();
  };
  pkt_aus(&host.state_pointer);
  EXPECT_EQ(desktop.dialogs, std::vector<int>{7010}) << "the overflow is shown";
  EXPECT_EQ(&platform::CurrentClock(), before);
  EXPECT_EQ(SetOverflowReport(nullptr), report);
  sigaction(SIGFPE, &kept, &action);
  EXPECT_EQ(action.sa_handler, SIG_IGN);
}

TEST_F(Run, OddNumbersAndCommandsToComeDoNothing) {
  host.choices = {1, 3, -2, 11, 12, 4, 8, 9};
  pkt_aus(&host.state_pointer);
  const Calls before = Joined({kClosing, kDeleting, kOpening, kMenu});
  EXPECT_EQ(Calls(host.calls.begin() + static_cast<int>(before.size()), host.calls.end()), Calls(8, "get_menu_no"));
  EXPECT_TRUE(desktop.dialogs.empty());
}

TEST_F(Run, PicksPointsUntilTheSurveyorEndsIt) {
  host.choices = {6, 0, 6};
  host.picks = {"4711", "4712", "sechzehn Zeichen"};
  pkt_aus(&host.state_pointer);
  const auto first = std::find(host.calls.begin(), host.calls.end(), "v2_point_ask points 0 0");
  ASSERT_NE(first, host.calls.end());
  Calls asked;
  for (auto call = first; call != host.calls.end(); ++call) {
    if (call->starts_with("v2_") || call->starts_with("get") || call->starts_with("vm_dbk_read"))
      asked.push_back(*call);
    EXPECT_FALSE(call->starts_with("f4r_") || call->starts_with("db_write")) << *call;
  }
  EXPECT_EQ(asked,
            (Calls{"v2_point_ask points 0 0", "vm_dbk_read points 1", "v2_point_ask points 1 0", "vm_dbk_read points 1",
                   "v2_point_ask points 2 0", "vm_dbk_read points 1", "v2_point_ask points 3 0", "get_menu_no"}));
}

TEST_F(Run, CommandsOpenTheirDialogs) {
  host.choices = {2, 10};
  pkt_aus(&host.state_pointer);
  EXPECT_EQ(desktop.dialogs, (std::vector<int>{7020, 7000}));
}

constexpr char kLibrary[] = PKTAUS_BIN_DIR "/libpkt_aus.so";

TEST_F(Run, TheLibraryFindsTheHostAndDoesTheSame) {
  void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto entry = reinterpret_cast<decltype(&pkt_aus)>(dlsym(library, "pkt_aus"));
  ASSERT_NE(entry, &pkt_aus);
  EXPECT_EQ(entry(&host.state_pointer), 0);
  EXPECT_EQ(host.calls, Joined({kClosing, kDeleting, kOpening, kMenu}));
  host.on_call = [](const std::string& call) {
    if (call == "vm_dba_close dba") throw CException("von der Bibliothek");
  };
  EXPECT_EQ(entry(&host.state_pointer), 0);
  ASSERT_EQ(desktop.boxes.size(), 1U);
  EXPECT_EQ(desktop.boxes[0].text, "CException:\n\tvon der Bibliothek\n") << "types are one on both sides";
  dlclose(library);
}

std::string Symbols(const std::string& kind) {
  FILE* pipe = popen(("nm -D --format=just-symbols --" + kind + "-only " + kLibrary).c_str(), "r");
  if (pipe == nullptr) return "nm did not start";
  std::string symbols;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) symbols += static_cast<char>(c);
  return pclose(pipe) == 0 ? symbols : "nm failed";
}

TEST(Library, ExportsOneSymbolAndLacksNoneOfItsOwn) {
  EXPECT_EQ(Symbols("defined"), "pkt_aus\n");
  const std::string undefined = Symbols("undefined");
  EXPECT_NE(undefined.find("v2_point_ask\n"), std::string::npos);
  for (const char* own : {"6pktaus", "7toolkit", "8platform"}) {
    EXPECT_EQ(undefined.find(own), std::string::npos) << undefined.substr(undefined.find(own), 80);
  }
}

}  // namespace
}  // namespace pktaus
