// Eight bytes at once.
#pragma once

#include <cstdint>
#include <cstring>

namespace pktaus {

inline constexpr std::uint64_t kLowBits = 0x0101010101010101U;
inline constexpr std::uint64_t kHighBits = 0x8080808080808080U;

inline std::uint64_t WordAt(const char* p) {
  std::uint64_t word = 0;
  std::memcpy(&word, p, sizeof word);
  return word;
}

/// Not 0 where one of the bytes is LF.
inline std::uint64_t LineFeeds(std::uint64_t word) {
  const std::uint64_t others = word ^ (kLowBits * '\n');
  return (others - kLowBits) & ~others & kHighBits;
}

/// Copies eight bytes and gives their LineFeeds.
inline std::uint64_t CopyWord(const char* from, char* to) {
  const std::uint64_t word = WordAt(from);
  std::memcpy(to, &word, sizeof word);
  return LineFeeds(word);
}

}  // namespace pktaus
