#include "korvo/desktop/fault_handlers.h"

namespace korvo {

FaultHandlers::FaultHandlers() {
  for (std::size_t i = 0; i < kFaults.size(); ++i) sigaction(kFaults[i], nullptr, &actions_[i]);
}

void FaultHandlers::PutBack() const {
  for (std::size_t i = 0; i < kFaults.size(); ++i) sigaction(kFaults[i], &actions_[i], nullptr);
}

}  // namespace korvo
