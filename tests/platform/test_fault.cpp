#include <gtest/gtest.h>
#include <signal.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/fault.h"
#include "platform/system.h"

namespace platform {
namespace {

// A sanitizer would report it before the machine does.
__attribute__((no_sanitize("undefined"), noinline)) void WriteNowhere() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

int Deeper(volatile char* above) {
  volatile char room[4096];
  room[0] = above[0];
  return room[0] != 0 ? 0 : Deeper(room) + room[0];
}

void ExhaustStack() {
  volatile char first = 0;
  Deeper(&first);
}

/// What the process does on faults, as text that can be compared.
std::string Disposition() {
  std::ostringstream all;
  sigset_t blocked;
  sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
    struct sigaction action = {};
    sigaction(fault, nullptr, &action);
    all << reinterpret_cast<void*>(action.sa_sigaction) << sigismember(&blocked, fault) << ' ';
  }
  stack_t stack = {};
  sigaltstack(nullptr, &stack);
  all << stack.ss_sp << ' ' << stack.ss_flags;
  return all.str();
}

TEST(Fault, EndsTheWorkAndLeavesTheProcessAsItWas) {
  const std::pair<void (*)(), int> kCases[] = {{WriteNowhere, SIGSEGV},         {ExhaustStack, SIGSEGV},
                                               {[] { raise(SIGFPE); }, SIGFPE}, {[] { __builtin_trap(); }, SIGILL},
                                               {[] { raise(SIGBUS); }, SIGBUS}, {[] {}, 0}};
  const std::string before = Disposition();
  for (const auto& [work, fault] : kCases) {
    for (int time = 0; time < 2; ++time) {
      SetLastSystemError(17);
      EXPECT_EQ(RunUnderFaultBarrier(work), fault);
      EXPECT_EQ(LastSystemError(), 17) << fault;
      EXPECT_EQ(Disposition(), before) << fault;
    }
  }
}

TEST(Fault, TheInnermostBarrierOfItsThreadTakesIt) {
  const std::string before = Disposition();
  std::string road;
  const int outer = RunUnderFaultBarrier([&] {
    road += RunUnderFaultBarrier(WriteNowhere) == SIGSEGV ? "inner " : "lost ";
    EXPECT_THROW(RunRaisingFaults(ExhaustStack), MachineFault);
    EXPECT_THROW(RunUnderFaultBarrier([] { throw std::runtime_error("x"); }), std::runtime_error);
    std::thread([] { EXPECT_EQ(RunUnderFaultBarrier(ExhaustStack), SIGSEGV); }).join();
    raise(SIGFPE);
    road += "never";
  });
  EXPECT_EQ(outer, SIGFPE);
  EXPECT_EQ(road, "inner ");
  EXPECT_EQ(Disposition(), before);
}

TEST(Fault, OnAThreadWithoutABarrierGoesToTheHandlerThatStoodBefore) {
  static int seen = 0;
  const auto before = signal(SIGFPE, [](int fault) { seen = fault; });
  EXPECT_EQ(RunUnderFaultBarrier([] { std::thread([] { raise(SIGFPE); }).join(); }), 0);
  signal(SIGFPE, before);
  EXPECT_EQ(seen, SIGFPE);
}

}  // namespace
}  // namespace platform
