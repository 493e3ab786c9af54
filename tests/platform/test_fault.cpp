#include <gtest/gtest.h>
#include <signal.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/fault.h"
#include "platform/system.h"

// A sanitizer would report these before the machine does.
#define UNCHECKED __attribute__((no_sanitize("undefined"), noinline))

namespace platform {
namespace {

UNCHECKED void WriteNowhere() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

UNCHECKED void DivideByZero() {
  volatile int zero = 0;
  volatile int quotient = 7 / zero;
  (void)quotient;
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

// The C library adds it to every action that it sets.
constexpr int kRestorer = 0x04000000;

constexpr std::array<int, 4> kFaults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

/// What the process does on faults, as text that can be compared.
std::string Disposition() {
  std::string all;
  for (const int fault : kFaults) {
    struct sigaction action = {};
    sigaction(fault, nullptr, &action);
    all += std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_sigaction)) + ' ' +
           std::to_string(action.sa_flags & ~kRestorer) + ' ' + std::to_string(sigismember(&action.sa_mask, SIGINT)) +
           '\n';
  }
  stack_t stack = {};
  sigaltstack(nullptr, &stack);
  sigset_t blocked;
  sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (const int fault : kFaults) all += sigismember(&blocked, fault) == 0 ? "open " : "blocked ";
  return all + std::to_string(reinterpret_cast<std::uintptr_t>(stack.ss_sp)) + ' ' + std::to_string(stack.ss_flags);
}

TEST(Fault, EndsTheWorkAndLeavesTheProcessAsItWas) {
  const struct {
    const char* name;
    void (*work)();
    int fault;
  } kCases[] = {{"write to null", WriteNowhere, SIGSEGV},
                {"exhausted stack", ExhaustStack, SIGSEGV},
                {"division by zero", DivideByZero, SIGFPE},
                {"broken instruction", [] { __builtin_trap(); }, SIGILL},
                {"mapping without a file", [] { raise(SIGBUS); }, SIGBUS},
                {"no fault", [] {}, 0}};
  const std::string before = Disposition();
  for (int round = 0; round < 2; ++round) {
    for (const auto& c : kCases) {
      SetLastSystemError(17);
      EXPECT_EQ(RunUnderFaultBarrier(c.work), c.fault) << c.name;
      EXPECT_EQ(LastSystemError(), 17) << c.name;
      EXPECT_EQ(Disposition(), before) << c.name;
    }
  }
}

TEST(Fault, AnExceptionPassesAndLeavesTheProcessAsItWas) {
  const std::string before = Disposition();
  EXPECT_THROW(RunUnderFaultBarrier([] { throw std::runtime_error("x"); }), std::runtime_error);
  EXPECT_EQ(Disposition(), before);
}

TEST(Fault, TheInnermostBarrierTakesIt) {
  std::string road;
  const int outer = RunUnderFaultBarrier([&] {
    road += RunUnderFaultBarrier(WriteNowhere) == SIGSEGV ? "inner " : "lost ";
    EXPECT_THROW(RunRaisingFaults(ExhaustStack), MachineFault);
    EXPECT_THROW(RunUnderFaultBarrier([] { throw std::runtime_error("x"); }), std::runtime_error);
    road += "on ";
    DivideByZero();
    road += "never";
  });
  EXPECT_EQ(outer, SIGFPE);
  EXPECT_EQ(road, "inner on ");
}

TEST(Fault, OnAnotherThreadGoesToTheHandlerThatStoodBefore) {
  static int seen = 0;
  struct sigaction mine = {};
  struct sigaction before = {};
  mine.sa_handler = [](int fault) { seen = fault; };
  sigaction(SIGFPE, &mine, &before);
  EXPECT_EQ(RunUnderFaultBarrier([] { std::thread([] { raise(SIGFPE); }).join(); }), 0);
  sigaction(SIGFPE, &before, nullptr);
  EXPECT_EQ(seen, SIGFPE);
}

TEST(Fault, ThreadsWithBarriersDoNotDisturbEachOther) {
  const std::string before = Disposition();
  EXPECT_EQ(RunUnderFaultBarrier([] {
              std::thread([] { EXPECT_EQ(RunUnderFaultBarrier(ExhaustStack), SIGSEGV); }).join();
              DivideByZero();
            }),
            SIGFPE);
  EXPECT_EQ(Disposition(), before);
}

TEST(FaultDeathTest, WithoutABarrierTheProcessEnds) {
  EXPECT_EXIT(
      {
        signal(SIGFPE, SIG_DFL);
        RunUnderFaultBarrier([] { std::thread(DivideByZero).join(); });
      },
      testing::KilledBySignal(SIGFPE), "");
}

}  // namespace
}  // namespace platform
