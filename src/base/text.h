// Windows-1252, the code page of the host, of the point table and of every text in memory.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace text {

/// Unicode code points of the bytes 0x80 to 0x9F of Windows-1252. The five bytes that the code page leaves open stand
/// for the control character of the same number, so that every byte has a code point and comes back as it was.
inline constexpr std::array<char16_t, 32> kUpperHalf = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// The byte of a code point, or -1 where Windows-1252 has none.
constexpr int ByteOf(char32_t point) {
  if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<int>(point);
  for (std::size_t i = 0; i < kUpperHalf.size(); ++i) {
    if (kUpperHalf[i] == point) return static_cast<int>(0x80 + i);
  }
  return -1;
}

/// Takes one code point off the front of UTF-8 text; false, with `rest` as it was, at the first byte of anything that
/// is no well-formed sequence.
constexpr bool NextPoint(std::string_view* rest, char32_t* point) {
  if (rest->empty()) return false;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>((*rest)[i]); };
  const unsigned first = byte(0);
  const std::size_t length = first < 0x80 ? 1 : first >= 0xF0 && first < 0xF5 ? 4 : first >= 0xE0 ? 3 : 2;
  if ((first >= 0x80 && first < 0xC2) || first >= 0xF5 || rest->size() < length) return false;
  char32_t value = length == 1 ? first : first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return false;
    value = (value << 6) | (byte(i) & 0x3FU);
  }
  const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
  if (overlong || (value >= 0xD800 && value < 0xE000) || value > 0x10FFFF) return false;
  *point = value;
  rest->remove_prefix(length);
  return true;
}

/// Windows-1252 to UTF-8; every byte has a form.
std::string ToUtf8(std::string_view ansi);

/// UTF-8 to Windows-1252; nothing where the text is no UTF-8 or holds a letter that Windows-1252 lacks.
std::optional<std::string> FromUtf8(std::string_view utf8);

/// As FromUtf8, with '?' for what cannot be said: for text that is only shown.
std::string FromUtf8Lossy(std::string_view utf8);

/// Order of a German reader (DIN 5007-1): letters with marks beside their base letter, ß as ss, case last and small
/// before capital, bytes as the final word, so that only equal texts compare equal. Below 0, 0 or above 0.
int CompareGerman(std::string_view a, std::string_view b);

/// Equality where 'A' to 'Z' and 'a' to 'z' are one; for file patterns and endings.
bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// The number with so many digits behind a point, whatever the machine's number format.
std::string Decimal(double number, int digits);

namespace detail {
template <std::size_t N>
struct Utf8Literal {
  char bytes[N]{};
  // NOLINTNEXTLINE(google-explicit-constructor): the conversion is what makes a literal operator of it
  consteval Utf8Literal(const char (&source)[N]) { std::copy_n(source, N, bytes); }
};

template <Utf8Literal Source>
struct AnsiLiteral {
  static constexpr auto Make() {
    std::array<char, sizeof(Source.bytes)> out{};
    std::string_view rest(Source.bytes, sizeof(Source.bytes) - 1);
    std::size_t n = 0;
    while (!rest.empty()) {
      char32_t point = 0;
      if (!NextPoint(&rest, &point)) throw "not UTF-8";
      const int byte = ByteOf(point);
      if (byte < 0) throw "not in Windows-1252";
      out[n++] = static_cast<char>(byte);
    }
    return out;
  }
  static constexpr auto kBytes = Make();
};
}  // namespace detail

inline namespace literals {
/// "Prüfdatum"_ansi: the text in Windows-1252, made by the compiler, NUL-terminated, alive for the whole program.
template <detail::Utf8Literal Source>
constexpr const char* operator""_ansi() {
  return detail::AnsiLiteral<Source>::kBytes.data();
}
}  // namespace literals

}  // namespace text
