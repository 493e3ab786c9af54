// Collects what the bounded copies report, for a block.
#pragma once

#include <string>
#include <vector>

#include "base/bounded.h"

namespace support {

class OverflowLog {
 public:
  OverflowLog() : before_(pktaus::SetOverflowReport(&Report)) { texts().clear(); }
  ~OverflowLog() { pktaus::SetOverflowReport(before_); }
  OverflowLog(const OverflowLog&) = delete;
  OverflowLog& operator=(const OverflowLog&) = delete;

  /// Texts of the reports so far; one log at a time.
  static std::vector<std::string>& texts() {
    static std::vector<std::string> all;
    return all;
  }

 private:
  static void Report(const char*, const char* text) { texts().emplace_back(text); }
  pktaus::OverflowReport before_;
};

}  // namespace support
