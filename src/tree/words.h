// Eight bytes at once.
#pragma once

#include <cstddef>
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

/// For short texts, where a call costs more than the look.
inline bool EqualBytes(const char* a, const char* b, std::size_t size) {
  if (size < 8) {
    bool equal = true;
    for (std::size_t i = 0; i < size; ++i) equal &= a[i] == b[i];
    return equal;
  }
  std::uint64_t differences = WordAt(a + size - 8) ^ WordAt(b + size - 8);
  for (std::size_t i = 0; i + 8 < size; i += 8) differences |= WordAt(a + i) ^ WordAt(b + i);
  return differences == 0;
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
