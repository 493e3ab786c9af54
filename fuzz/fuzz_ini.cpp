#include <cstddef>
#include <cstdint>

#include "fuzz/tree_inputs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::TryIni({reinterpret_cast<const char*>(data), size});
  return 0;
}
