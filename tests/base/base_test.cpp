#include <gtest/gtest.h>

#include <cstring>

#include "base/bounded.h"
#include "base/path.h"
#include "base/text.h"

using namespace text::literals;

TEST(Text, EveryByteGoesToUtf8AndBackAndNothingElseHasAForm) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  EXPECT_EQ(text::FromUtf8(text::ToUtf8(all)), all);
  for (const char* broken : {"\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xFF", "\xE2\x82", "Ł", "😀"}) {
    EXPECT_EQ(text::FromUtf8(broken), std::nullopt) << broken;
  }
  EXPECT_EQ(text::FromUtf8Lossy("aŁ\xC3"), "a??");
}

TEST(Text, SortsAsAGermanReaderExpects) {
  const char* const kInOrder[] = {"",    "Äcker"_ansi, "Ader",     "åss"_ansi, "asS",   "äß"_ansi,
                                  "bar", "Bar",        "Bär"_ansi, "Maß"_ansi, "Masse", "Mast"};
  for (const char* const& a : kInOrder) {
    for (const char* const& b : kInOrder) EXPECT_EQ(text::CompareGerman(a, b) <=> 0, &a <=> &b) << a << " " << b;
  }
}

TEST(Path, IsTakenApartPutTogetherAndMatchedRegardlessOfCase) {
  EXPECT_EQ(path::FileName("C:\\a/b\\c.xml"), "c.xml");
  EXPECT_EQ(path::Folder("C:\\a/b\\c.xml"), "C:\\a/b");
  EXPECT_EQ(path::Folder("/b.xml"), "/");
  EXPECT_TRUE(path::IsAbsolute("/b") && path::IsAbsolute("C:\\b") && !path::IsAbsolute("C:b"));
  EXPECT_EQ(path::Join("/a", "b") + path::Join("C:\\", "b") + path::Join("", "b"), "/a/bC:\\bb");
  EXPECT_TRUE(path::Matches("a.xml.XmL", "*.XML") && path::Matches("abcabd", "a*b?"));
  for (const char* name : {"a.xmlx", "xml", ""}) EXPECT_FALSE(path::Matches(name, "*.XML")) << name;
}

// Six bytes of eight may be written.
TEST(Bounded, WritesNeverPassTheEndAndReportWhatTheyCut) {
  using namespace pktaus;
  static std::string reported;
  const std::string long_text(30000, 'z');
  const auto format = [](char* dst, const char* text, std::size_t size) {
    return dst + (my_sprintf(dst, size, "a%sb", text) - static_cast<int>(std::strlen(dst)));
  };
  const struct {
    char* (*write)(char*, const char*, std::size_t);
    const char *before, *text, *after;
    std::string report;
  } kCases[] = {
      {my_strcpy, "abc", "", "\0\0\0\0\0\0xx", ""},
      {my_strcpy, "", "abcde", "abcde\0xx", ""},
      {my_strcpy, "", long_text.c_str(), "zzzzz\0xx", "Intern memsave|my_strcpy 6 30000 >" + long_text.substr(0, 9980)},
      {my_strcat, "abc", "def", "abcde\0xx", "Intern memsave|my_strcpy 3 3 >def<"},
      {format, "", "%s%", "a%s%b\0xx", ""},
      {format, "abc", "1234", "\0bc\0xxxx", "Intern memsave|my_sprintf 6"},
  };
  SetOverflowReport([](const char* title, const char* text) { reported = std::string(title) + "|" + text; });
  for (const auto& c : kCases) {
    reported.clear();
    char array[] = "xxxxxxxx";
    std::strcpy(array, c.before);
    EXPECT_EQ(c.write(array, c.text, 6), array);
    EXPECT_EQ(std::string(array, 8), std::string(c.after, 8)) << c.report;
    EXPECT_EQ(reported, c.report);
  }
  SetOverflowReport(nullptr);
}
