#include "tree/umlauts.h"

#include <cstring>

namespace pktaus {
namespace {

constexpr char kLead = static_cast<char>(0xC3);

}  // namespace

std::size_t Utf8ToAnsi(std::string_view text, char* out) {
  const char* from = text.data();
  const char* const end = from + text.size();
  char* to = out;
  while (from < end) {
    const auto* lead = static_cast<const char*>(std::memchr(from, kLead, static_cast<std::size_t>(end - from)));
    const char* const stop = lead == nullptr ? end : lead;
    if (to != from) std::memmove(to, from, static_cast<std::size_t>(stop - from));
    to += stop - from;
    from = stop;
    if (lead == nullptr) break;
    if (end - from < 2) {
      *to++ = *from++;
      continue;
    }
    const char letter = static_cast<char>(static_cast<unsigned char>(from[1]) + 0x40);
    if (from[1] != '\0' && SecondByteOf(letter) == from[1]) {
      *to++ = letter;
    } else {
      const char second = from[1];
      *to++ = kLead;
      *to++ = second;
    }
    from += 2;
  }
  return static_cast<std::size_t>(to - out);
}

std::string Utf8ToAnsi(std::string_view text) {
  std::string out(text.size(), '\0');
  out.resize(Utf8ToAnsi(text, out.data()));
  return out;
}

std::string AnsiToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 16);
  for (const char c : text) {
    const char second = SecondByteOf(c);
    if (second != 0) out.push_back(kLead);
    out.push_back(second != 0 ? second : c);
  }
  return out;
}

}  // namespace pktaus
