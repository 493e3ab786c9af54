#include "platform/fault.h"

#include <setjmp.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>

#include "platform/system.h"

namespace platform {

namespace {

constexpr std::array<int, 4> kFaults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};
constexpr std::size_t kHandlerStackSize = 64 * 1024;

struct Barrier {
  sigjmp_buf back;
  Barrier* outer;
};

thread_local Barrier* innermost = nullptr;

// Handlers belong to the process: the first thread with a barrier sets them, the last one puts the old ones back.
std::mutex handlers_mutex;
int threads_with_barrier = 0;
std::array<struct sigaction, kFaults.size()> old_actions;

void PassOn(int fault, siginfo_t* info, void* context) {
  const std::size_t i = static_cast<std::size_t>(std::find(kFaults.begin(), kFaults.end(), fault) - kFaults.begin());
  const struct sigaction& old = old_actions[i];
  if ((old.sa_flags & SA_SIGINFO) != 0) {
    old.sa_sigaction(fault, info, context);
  } else if (old.sa_handler != SIG_DFL && old.sa_handler != SIG_IGN) {
    old.sa_handler(fault);
  } else {
    // Comes again as soon as the handler returns, and then has the system's own end.
    signal(fault, SIG_DFL);
    raise(fault);
  }
}

void OnFault(int fault, siginfo_t* info, void* context) {
  Barrier* barrier = innermost;
  // SI_USER: another process asks this one to die.
  if (barrier == nullptr || info->si_code == SI_USER) {
    PassOn(fault, info, context);
    return;
  }
  siglongjmp(barrier->back, fault);
}

/// Handlers and a stack for them, for the outermost barrier of a thread.
class Handlers {
 public:
  Handlers() : stack_(std::make_unique_for_overwrite<char[]>(kHandlerStackSize)) {
    KeepSystemError keep;
    stack_t stack = {};
    stack.ss_sp = stack_.get();
    stack.ss_size = kHandlerStackSize;
    stack_set_ = sigaltstack(&stack, &old_stack_) == 0;
    const std::lock_guard lock(handlers_mutex);
    if (threads_with_barrier++ > 0) return;
    struct sigaction action = {};
    action.sa_sigaction = OnFault;
    // The way out of the handler is a jump, which must not leave the signal blocked.
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kFaults.size(); ++i) sigaction(kFaults[i], &action, &old_actions[i]);
  }
  ~Handlers() {
    KeepSystemError keep;
    {
      const std::lock_guard lock(handlers_mutex);
      if (--threads_with_barrier == 0) {
        for (std::size_t i = 0; i < kFaults.size(); ++i) sigaction(kFaults[i], &old_actions[i], nullptr);
      }
    }
    if (stack_set_) sigaltstack(&old_stack_, nullptr);
  }
  Handlers(const Handlers&) = delete;
  Handlers& operator=(const Handlers&) = delete;

 private:
  std::unique_ptr<char[]> stack_;
  stack_t old_stack_ = {};
  bool stack_set_ = false;
};

/// Makes a barrier the innermost one of its thread for a block.
class Raised {
 public:
  explicit Raised(Barrier* barrier) {
    barrier->outer = innermost;
    innermost = barrier;
    barrier_ = barrier;
  }
  ~Raised() { innermost = barrier_->outer; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

 private:
  Barrier* barrier_;
};

}  // namespace

int RunUnderFaultBarrier(const std::function<void()>& work) {
  const std::unique_ptr<Handlers> handlers = innermost == nullptr ? std::make_unique<Handlers>() : nullptr;
  Barrier barrier;
  const Raised raised(&barrier);
  const int fault = sigsetjmp(barrier.back, 0);
  if (fault == 0) work();
  return fault;
}

void RunRaisingFaults(const std::function<void()>& work) {
  const int fault = RunUnderFaultBarrier(work);
  if (fault != 0) throw MachineFault(fault);
}

}  // namespace platform
