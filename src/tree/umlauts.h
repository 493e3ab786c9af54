// The seven German letters between the form of XML files (UTF-8) and the form in memory (Windows-1252).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pktaus {

/// Turns 0xC3 and the byte behind it into one byte where the two are one of Ä Ö Ü ß ä ö ü. Every other byte is copied;
/// a 0xC3 that begins no such letter together with the byte behind it.
std::string Utf8ToAnsi(std::string_view text);

/// The same into `out`, which has room for the size of `text` and may be its memory. Gives the number of bytes.
std::size_t Utf8ToAnsi(std::string_view text, char* out);

/// The seven letters as two bytes each, every other byte unchanged.
std::string AnsiToUtf8(std::string_view text);

/// Second byte of one of the seven letters in UTF-8, behind 0xC3; 0 for every other byte of Windows-1252.
constexpr char SecondByteOf(char ansi) {
  switch (static_cast<unsigned char>(ansi)) {
    case 0xC4:
    case 0xD6:
    case 0xDC:
    case 0xDF:
    case 0xE4:
    case 0xF6:
    case 0xFC:
      return static_cast<char>(static_cast<unsigned char>(ansi) - 0x40);
    default:
      return 0;
  }
}

}  // namespace pktaus
