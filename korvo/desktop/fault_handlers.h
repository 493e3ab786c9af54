// Who answers machine faults.
#pragma once

#include <signal.h>

#include <array>

namespace korvo {

/// The handlers of the process at one time. They are the process's own: only one thread may change them.
class FaultHandlers {
 public:
  /// Those that stand now.
  FaultHandlers();
  void PutBack() const;

 private:
  static constexpr std::array<int, 4> kFaults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};
  std::array<struct sigaction, kFaults.size()> actions_{};
};

/// Other handlers for a block.
class UnderHandlers {
 public:
  explicit UnderHandlers(const FaultHandlers& handlers) { handlers.PutBack(); }
  ~UnderHandlers() { before_.PutBack(); }
  UnderHandlers(const UnderHandlers&) = delete;
  UnderHandlers& operator=(const UnderHandlers&) = delete;

  const FaultHandlers& before() const { return before_; }

 private:
  FaultHandlers before_;
};

}  // namespace korvo
