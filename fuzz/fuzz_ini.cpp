#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/comparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  fuzz::TryIni(text);
  // The naive reader takes exponential time: small inputs alone.
  if (size <= 64) fuzz::Require(fuzz::Comparison().Ini(text).empty());
  return 0;
}
