#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/bounded.h"

namespace pktaus {
namespace {

std::string reported;

// Six bytes of eight may be written.
TEST(Bounded, WritesNeverPassTheEndAndReportWhatTheyCut) {
  const std::string long_text(30000, 'z');
  const auto format = [](char* dst, const char* text, std::size_t size) {
    return dst + (my_sprintf(dst, size, "a%sb", text) - static_cast<int>(std::strlen(dst)));
  };
  const struct {
    char* (*write)(char*, const char*, std::size_t);
    const char* before;
    const char* text;
    const char* after;
    std::string report;
  } kCases[] = {
      {my_strcpy, "abc", "", "\0\0\0\0\0\0xx", ""},
      {my_strcpy, "", "abcde", "abcde\0xx", ""},
      {my_strcpy, "", "abcdef", "abcde\0xx", "Intern memsave|my_strcpy 6 6 >abcdef<"},
      {my_strcpy, "", long_text.c_str(), "zzzzz\0xx", "Intern memsave|my_strcpy 6 30000 >" + long_text.substr(0, 9980)},
      {my_strcat, "abc", "de", "abcde\0xx", ""},
      {my_strcat, "abc", "def", "abcde\0xx", "Intern memsave|my_strcpy 3 3 >def<"},
      {format, "", "%s%", "a%s%b\0xx", ""},
      {format, "", "1234", "\0xxxxxxx", "Intern memsave|my_sprintf 6"},
      {my_strcat, "abcdef", "d", "abcdef\0x", "Intern memsave|my_strcat 6"},
  };
  const OverflowReport before =
      SetOverflowReport([](const char* title, const char* text) { reported = std::string(title) + "|" + text; });
  for (const auto& c : kCases) {
    reported.clear();
    char array[] = "xxxxxxxx";
    std::strcpy(array, c.before);
    EXPECT_EQ(c.write(array, c.text, 6), array);
    EXPECT_EQ(std::string(array, 8), std::string(c.after, 8)) << c.report;
    EXPECT_EQ(reported, c.report);
  }
  SetOverflowReport(before);
}

}  // namespace
}  // namespace pktaus
