#include <gtest/gtest.h>

#include "base/path.h"
#include "base/text.h"

using namespace text::literals;

TEST(Text, EveryByteGoesToUtf8AndBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  EXPECT_EQ(text::FromUtf8(text::ToUtf8(all)), all);
  EXPECT_STREQ("Prü €ß"_ansi, "Pr\xFC \x80\xDF");
}

TEST(Text, WhatIsNoUtf8OrNotInTheCodePageHasNoForm) {
  for (const char* broken :
       {"\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "\x80", "\xE2\x82", "Ł", "😀"}) {
    EXPECT_EQ(text::FromUtf8(broken), std::nullopt) << broken;
  }
  EXPECT_EQ(text::FromUtf8Lossy("aŁ\xC3"), "a??");
}

TEST(Text, SortsAsAGermanReaderExpects) {
  const char* const kInOrder[] = {"",     "1",        "Aachen", "Äcker"_ansi, "Ader",     "bar", "Bar",  "Bär"_ansi,
                                  "Barz", "Maß"_ansi, "Masse",  "Mast",       "Öse"_ansi, "Ost", "Zebra"};
  for (const char* const& a : kInOrder) {
    for (const char* const& b : kInOrder) EXPECT_EQ(text::CompareGerman(a, b) <=> 0, &a <=> &b) << a << " " << b;
  }
}

TEST(Path, IsTakenApart) {
  const std::pair<const char*, const char*> kCases[] = {
      {"/a/b.xml", "/a|b.xml|absolute"}, {"C:\\a/b\\c.xml", "C:\\a/b|c.xml|absolute"},
      {"/b.xml", "/|b.xml|absolute"},    {"a/", "a||"},
      {"C:b.xml", "|C:b.xml|"},          {"", "||"}};
  for (const auto& [path, parts] : kCases) {
    EXPECT_EQ(std::string(path::Folder(path)) + "|" + std::string(path::FileName(path)) + "|" +
                  (path::IsAbsolute(path) ? "absolute" : ""),
              parts);
  }
  EXPECT_EQ(path::Join("/a", "b"), "/a/b");
  EXPECT_EQ(path::Join("C:\\", "b"), "C:\\b");
  EXPECT_EQ(path::Join("", "b"), "b");
}

TEST(Path, PatternsMatchRegardlessOfCase) {
  for (const char* name : {".Xml", "a.xml.XmL"}) EXPECT_TRUE(path::Matches(name, "*.XML")) << name;
  for (const char* name : {"a.xmlx", "xml", ""}) EXPECT_FALSE(path::Matches(name, "*.XML")) << name;
  EXPECT_TRUE(path::Matches("abcabd", "a*b?"));
  EXPECT_FALSE(path::Matches("abcab", "a*b?"));
  EXPECT_TRUE(path::Matches(std::string(200, 'a') + "b", "*a*a*a*a*a*b"));
}
