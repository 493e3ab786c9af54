// Machine faults (access violation, division by zero, exhausted stack) as an answer instead of an end.
#pragma once

#include <exception>
#include <functional>

namespace platform {

/// Raised where a machine fault was caught and has to travel on as a C++ exception.
class MachineFault : public std::exception {
 public:
  explicit MachineFault(int signal) : signal_(signal) {}
  const char* what() const noexcept override { return "machine fault"; }
  int signal() const { return signal_; }

 private:
  int signal_;
};

/// Runs `work` on this thread and gives 0, or the number of the machine fault that ended it. After a fault nothing that
/// stood on the stack inside `work` was destroyed. C++ exceptions pass through unchanged. Calls nest: the innermost
/// takes the fault. Signal handlers, the alternate stack and, after a fault, the last system error are as before when
/// it returns or throws. A fault on a thread without a barrier goes to the handler that stood before.
int RunUnderFaultBarrier(const std::function<void()>& work);

/// The same, and a fault goes on as a MachineFault.
void RunRaisingFaults(const std::function<void()>& work);

}  // namespace platform
