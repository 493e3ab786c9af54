#include "base/bounded.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace pktaus {
namespace {

constexpr char kReportTitle[] = "Intern memsave";

// The report's text has a bound of its own; what does not fit is cut there, never reported again.
constexpr std::size_t kReportLimit = 10000;

OverflowReport g_report = nullptr;

template <typename... Values>
void Report(const char* format, Values... values) {
  if (g_report == nullptr) return;
  std::string text(kReportLimit, '\0');
  std::snprintf(text.data(), text.size(), format, values...);
  g_report(kReportTitle, text.c_str());
}

}  // namespace

OverflowReport SetOverflowReport(OverflowReport report) { return std::exchange(g_report, report); }

char* my_strcpy(char* dst, const char* src, std::size_t size) {
  const std::size_t n = std::strlen(src);
  if (n >= size) Report("my_strcpy %d %d >%s<", static_cast<int>(size), static_cast<int>(n), src);
  if (size == 0) return dst;
  const std::size_t kept = std::min(n, size - 1);
  std::memmove(dst, src, kept);
  std::memset(dst + kept, 0, size - kept);
  return dst;
}

char* my_strcat(char* dst, const char* src, std::size_t size) {
  const std::size_t n = strnlen(dst, size);
  if (n >= size) {
    Report("my_strcat %d", static_cast<int>(size));
    return dst;
  }
  my_strcpy(dst + n, src, size - n);
  return dst;
}

int my_sprintf(char* dst, std::size_t size, const char* format, const char* text) {
  // "%s" goes and the terminator comes: one character less than the two lengths.
  if (std::strlen(format) + std::strlen(text) > size + 1) {
    Report("my_sprintf %d", static_cast<int>(size));
    if (size > 0) dst[0] = '\0';
    return 0;
  }
  const std::string_view form(format);
  const std::size_t mark = form.find("%s");
  std::string made(form);
  if (mark != std::string_view::npos) made.replace(mark, 2, text);
  my_strcpy(dst, made.c_str(), size);
  return static_cast<int>(made.size());
}

}  // namespace pktaus
