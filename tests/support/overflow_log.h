// Collects what the bounded copies report, for a block.
#pragma once

#include <string>
#include <vector>

#include "base/bounded.h"

namespace support {

class OverflowLog {
 public:
  OverflowLog() { all_.clear(); }
  ~OverflowLog() { pktaus::SetOverflowReport(before_); }

  /// Texts of the reports so far; one log at a time.
  const std::vector<std::string>& texts() const { return all_; }

 private:
  static void Report(const char*, const char* text) { all_.emplace_back(text); }

  inline static std::vector<std::string> all_;
  pktaus::OverflowReport before_ = pktaus::SetOverflowReport(&Report);
};

}  // namespace support
