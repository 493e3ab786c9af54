// The federal states on offer: those whose NAS template lies beside the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pktaus {

/// A template named by two digits and the state, such as "16Thüringen.XML".
struct StateFile {
  std::int32_t number;    ///< what the two digits say
  std::string name;       ///< without digits and ending; may be empty
  std::string file_name;  ///< Windows-1252
};

/// All of them, in the order of their file names.
std::vector<StateFile> ListStateFiles();

}  // namespace pktaus
