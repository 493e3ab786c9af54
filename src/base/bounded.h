// Writes into fixed char arrays that never pass the array's end and never hide that they cut.
#pragma once

#include <cstddef>

namespace pktaus {

/// Shows an overflow to the surveyor and waits until it has been read. Both texts live for the call only.
using OverflowReport = void (*)(const char* title, const char* text);

/// Sets who shows an overflow and gives who did before. Null (the start) shows nothing.
OverflowReport SetOverflowReport(OverflowReport report);

/// Copies `src` to `dst`, an array of `size` bytes, and fills the rest of the array with zero. A text of `size`
/// characters or more is cut to `size` - 1 and reported. `src` may lie in `dst`. Gives `dst`.
char* my_strcpy(char* dst, const char* src, std::size_t size);

/// Appends `src` to the text in `dst` under the rules of my_strcpy for the rest of the array. Where `dst` holds no
/// terminator within `size` bytes it is left alone, which is reported. Gives `dst`.
char* my_strcat(char* dst, const char* src, std::size_t size);

/// Formats `text` into `dst`. `format` holds exactly one "%s". Gives the number of characters; after an overflow, which
/// is reported, `dst` is empty and the result 0.
int my_sprintf(char* dst, std::size_t size, const char* format, const char* text);

/// my_strcpy with the limit that the array itself knows.
template <std::size_t N>
char* put(char (&dst)[N], const char* src) {
  return my_strcpy(dst, src, N);
}

}  // namespace pktaus
