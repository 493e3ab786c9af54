#include <gtest/gtest.h>

#include "base/path.h"
#include "base/text.h"

using namespace text::literals;

TEST(Text, EveryByteGoesToUtf8AndBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  EXPECT_EQ(text::FromUtf8(text::ToUtf8(all)), all);
  EXPECT_STREQ("Prüfdatum €ß"_ansi,
               "Pr\xFC"
               "fdatum \x80\xDF");
}

TEST(Text, WhatIsNoUtf8OrNotInTheCodePageHasNoForm) {
  for (const char* broken :
       {"\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "\x80", "\xE2\x82", "Ł", "😀"}) {
    EXPECT_EQ(text::FromUtf8(broken), std::nullopt) << broken;
  }
  EXPECT_EQ(text::FromUtf8Lossy("aŁ\xC3"), "a??");
}

TEST(Text, SortsAsAGermanReaderExpects) {
  const char* const kInOrder[] = {"",           "1",         "Aachen"_ansi, "Äcker"_ansi, "Ader"_ansi,
                                  "bar"_ansi,   "Bar"_ansi,  "Bär"_ansi,    "Barz"_ansi,  "Maß"_ansi,
                                  "Masse"_ansi, "Mast"_ansi, "Öse"_ansi,    "Ost"_ansi,   "Zebra"_ansi};
  for (std::size_t i = 0; i + 1 < std::size(kInOrder); ++i) {
    EXPECT_LT(text::CompareGerman(kInOrder[i], kInOrder[i + 1]), 0) << kInOrder[i];
    EXPECT_GT(text::CompareGerman(kInOrder[i + 1], kInOrder[i]), 0) << kInOrder[i];
    EXPECT_EQ(text::CompareGerman(kInOrder[i], kInOrder[i]), 0) << kInOrder[i];
  }
}

TEST(Path, IsTakenApart) {
  const struct {
    const char *path, *folder, *name;
    bool absolute;
  } kCases[] = {{"/a/b.xml", "/a", "b.xml", true},
                {"C:\\a\\b.xml", "C:\\a", "b.xml", true},
                {"C:\\a/b\\c.xml", "C:\\a/b", "c.xml", true},
                {"/b.xml", "/", "b.xml", true},
                {"b.xml", "", "b.xml", false},
                {"a/", "a", "", false},
                {"C:b.xml", "", "C:b.xml", false},
                {"", "", "", false}};
  for (const auto& row : kCases) {
    EXPECT_EQ(path::Folder(row.path), row.folder) << row.path;
    EXPECT_EQ(path::FileName(row.path), row.name) << row.path;
    EXPECT_EQ(path::IsAbsolute(row.path), row.absolute) << row.path;
  }
  EXPECT_EQ(path::Join("/a", "b"), "/a/b");
  EXPECT_EQ(path::Join("C:\\", "b"), "C:\\b");
  EXPECT_EQ(path::Join("", "b"), "b");
}

TEST(Path, PatternsMatchRegardlessOfCase) {
  for (const char* name : {"05Nrw.XML", "a.xml", ".Xml", "a.xml.xml"})
    EXPECT_TRUE(path::Matches(name, "*.XML")) << name;
  for (const char* name : {"a.xmlx", "xml", "a.xm", ""}) EXPECT_FALSE(path::Matches(name, "*.XML")) << name;
  EXPECT_TRUE(path::Matches("abcabd", "a*b?"));
  EXPECT_FALSE(path::Matches("abcab", "a*b?"));
  EXPECT_TRUE(path::Matches(std::string(200, 'a') + "b", "*a*a*a*a*a*b"));
}
