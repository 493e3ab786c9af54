// Who answers machine faults.
#pragma once

#include <signal.h>

#include <array>

#include "platform/system.h"

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

/// Other handlers for a block. The last system error is afterwards as it was before, or as the block has set it: what
/// the toolkit leaves there is nobody's reason.
class UnderHandlers {
 public:
  explicit UnderHandlers(const FaultHandlers& handlers) : error_(platform::LastSystemError()) { handlers.PutBack(); }
  ~UnderHandlers() {
    before_.PutBack();
    platform::SetLastSystemError(error_);
  }
  UnderHandlers(const UnderHandlers&) = delete;
  UnderHandlers& operator=(const UnderHandlers&) = delete;

  const FaultHandlers& before() const { return before_; }
  int error() const { return error_; }
  void set_error(int error) { error_ = error; }

 private:
  FaultHandlers before_;
  int error_;
};

}  // namespace korvo
