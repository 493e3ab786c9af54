#include "base/text.h"

#include <charconv>

namespace text {
namespace {

/// What a letter counts as: one or two small letters.
struct Folded {
  char letters[2] = {0, 0};
};

constexpr std::array<Folded, 256> MakeFolding() {
  std::array<Folded, 256> table{};
  for (int byte = 0; byte < 256; ++byte) {
    const bool capital = byte >= 'A' && byte <= 'Z';
    table[static_cast<std::size_t>(byte)] = {{static_cast<char>(capital ? byte - 'A' + 'a' : byte), 0}};
  }
  // From 0xC0 on, capitals; the small letters stand 0x20 behind them.
  constexpr std::string_view kBases = "aaaaaaaceeeeiiiidnooooo*ouuuuyts";
  for (std::size_t i = 0; i < kBases.size(); ++i) {
    if (kBases[i] == '*') continue;  // the signs of multiplication and division
    table[0xC0 + i] = table[0xE0 + i] = {{kBases[i], 0}};
  }
  table[0xC6] = table[0xE6] = {{'a', 'e'}};
  table[0xDE] = table[0xFE] = {{'t', 'h'}};
  table[0xDF] = {{'s', 's'}};
  table[0xFF] = table[0x9F] = {{'y', 0}};
  table[0x8A] = table[0x9A] = {{'s', 0}};
  table[0x8E] = table[0x9E] = {{'z', 0}};
  table[0x8C] = table[0x9C] = {{'o', 'e'}};
  return table;
}

constexpr std::array<Folded, 256> kFolding = MakeFolding();

bool IsCapital(unsigned char byte) {
  return (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7) || byte == 0x8A ||
         byte == 0x8C || byte == 0x8E || byte == 0x9F;
}

/// Gives a text letter by letter as it counts, then -1.
class FoldedLetters {
 public:
  explicit FoldedLetters(std::string_view text) : text_(text) {}
  int Next() {
    if (second_ != 0) {
      const int letter = static_cast<unsigned char>(second_);
      second_ = 0;
      return letter;
    }
    if (at_ == text_.size()) return -1;
    const Folded& folded = kFolding[static_cast<unsigned char>(text_[at_++])];
    second_ = folded.letters[1];
    return static_cast<unsigned char>(folded.letters[0]);
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  char second_ = 0;
};

void AppendUtf8(std::string* out, char16_t point) {
  if (point < 0x80) {
    out->push_back(static_cast<char>(point));
  } else if (point < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (point >> 6)));
    out->push_back(static_cast<char>(0x80 | (point & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xE0 | (point >> 12)));
    out->push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (point & 0x3F)));
  }
}

}  // namespace

std::string ToUtf8(std::string_view ansi) {
  std::string out;
  out.reserve(ansi.size() + ansi.size() / 8);
  for (const char c : ansi) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(&out, byte >= 0x80 && byte < 0xA0 ? kUpperHalf[byte - 0x80U] : byte);
  }
  return out;
}

std::optional<std::string> FromUtf8(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    char32_t point = 0;
    if (!NextPoint(&utf8, &point)) return std::nullopt;
    const int byte = ByteOf(point);
    if (byte < 0) return std::nullopt;
    out.push_back(static_cast<char>(byte));
  }
  return out;
}

std::string FromUtf8Lossy(std::string_view utf8) {
  std::string out;
  while (!utf8.empty()) {
    char32_t point = 0;
    int byte = -1;
    if (NextPoint(&utf8, &point)) {
      byte = ByteOf(point);
    } else {
      utf8.remove_prefix(1);
    }
    out.push_back(byte < 0 ? '?' : static_cast<char>(byte));
  }
  return out;
}

int CompareGerman(std::string_view a, std::string_view b) {
  FoldedLetters letters_a(a);
  FoldedLetters letters_b(b);
  for (;;) {
    const int x = letters_a.Next();
    const int y = letters_b.Next();
    if (x != y) return x < y ? -1 : 1;
    if (x < 0) break;
  }
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    const bool capital_a = IsCapital(static_cast<unsigned char>(a[i]));
    const bool capital_b = IsCapital(static_cast<unsigned char>(b[i]));
    if (capital_a != capital_b) return capital_a ? 1 : -1;
  }
  // "ss" in front of "ß": by their bytes alone, texts of several lengths would stand in a ring.
  if (a.size() != b.size()) return a.size() > b.size() ? -1 : 1;
  return a.compare(b);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return small(x) == small(y); });
}

std::string Decimal(double number, int digits) {
  char bytes[400];  // the largest double has 309 digits in front of its point
  return {bytes, std::to_chars(bytes, bytes + sizeof bytes, number, std::chars_format::fixed, digits).ptr};
}

}  // namespace text
