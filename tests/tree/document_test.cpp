#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "fuzz/tree_inputs.h"
#include "tests/support/faulty_files.h"
#include "tests/support/temp_folder.h"
#include "tests/tree/tree_text.h"
#include "tree/staging.h"

namespace {

using pktaus::CTreeDocument;
using pktaus::CTreeNode;
using support::BytesOf;
using support::TempFolder;
using support::TreeText;

TEST(Node, FindChild) {
  const struct {
    const char* children;  // separated by blanks
    const char* name;
    bool local;
    const char* found;  // "-" for none
  } kCases[] = {
      {"b c:b a:b", "a:b", true, "b"}, {"c:b a:b", "a:b", true, "a:b"}, {"c:b", "a:b", true, "-"},
      {"c:b b", "b", true, "c:b"},     {"x:a:b", "b", true, "x:a:b"},   {"x:a:b", "a:b", true, "-"},
      {"b", ":b", true, "-"},          {"c:b b", "b", false, "b"},      {"B", "b", false, "-"},
      {"B", "b", true, "-"},
  };
  for (const auto& c : kCases) {
    CTreeDocument document;
    CTreeNode* parent = document.NewNode("p");
    std::string rest = c.children;
    while (!rest.empty()) {
      const std::size_t end = rest.find(' ');
      parent->AddChild(document.NewNode(rest.substr(0, end)));
      rest = end == std::string::npos ? "" : rest.substr(end + 1);
    }
    const CTreeNode* found = parent->FindChild(c.name, c.local);
    EXPECT_EQ(found == nullptr ? "-" : found->GetName(), c.found) << c.children << " / " << c.name;
    EXPECT_EQ(parent->FindKey("==" + std::string(c.name)), parent->FindChild(c.name, false));
  }
}

TEST(Node, FindsFromAStartAndKeepsAttributes) {
  CTreeDocument document;
  CTreeNode* node = document.NewTextNode("a:b:c", "long value");
  CTreeNode* first = document.NewNode("x");
  CTreeNode* second = document.NewNode("x");
  node->AddChild(first);
  node->AddChild(nullptr);
  node->AddChildAfter(second, first);
  EXPECT_EQ(node->FindChild("x", true, second), second);
  EXPECT_EQ(node->FindChild("x", false, first), first);
  EXPECT_EQ(node->GetLocalName(), "c");
  node->SetAttribute("k", "1");
  node->SetAttribute("l", "2");
  node->SetAttribute("k", "3");
  EXPECT_EQ(node->GetAttribute("none"), "");
  node->SetValue(node->GetValue().substr(5));
  EXPECT_EQ(TreeText(node), "a:b:c[k=3 l=2]\"value\"(x x)");
  document.SetRoot(first);
  document.SetRoot(node);
  document.SetRoot(nullptr);
  EXPECT_EQ(document.GetRoot(), node);
  EXPECT_EQ(document.GetName(), "a:b:c");
}

TEST(Writers, Xml) {
  CTreeDocument document;
  EXPECT_EQ(fuzz::SaveXml(document), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n");
  CTreeNode* root = document.NewTextNode("r", "\xE4&\xE9\n\xDF");
  root->SetAttribute("", "left out");
  root->SetAttribute("a", "\xE4");
  CTreeNode* child = document.NewNode("c");
  child->AddChild(document.NewTextNode("d", "3"));
  root->AddChild(document.NewMarkupNode("--", "\xE4"));
  root->AddChild(child);
  child->AddChild(document.NewMarkupNode("[", "CDATA[x]"));
  document.SetRoot(root);
  EXPECT_EQ(fuzz::SaveXml(document),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<r a=\"\xE4\">\r\n<!--\xE4-->\r\n\r\n<c>\r\n\t<d>3</d>\r\n\t"
            "<![CDATA[x]]>\r\n</c>\xC3\xA4&\xE9\r\n\xC3\x9F</r>");
}

TEST(Ini, ReadsAndWrites) {
  const struct {
    const char* what;
    std::string ini;
    bool free_keys;
    const char* tree;
    const char* saved;
  } kCases[] = {
      {"plain with comment", "[S x]y\nname = value # comment\n", false, "INI(S x(FREEDATA NAME[REF=0]\"value\"))",
       "[S x]\r\nNAME = value\r\n"},
      {"single quotes", "[S]\r\na='b'", false, "INI(S(FREEDATA A[REF=1]\"b\"))", "[S]\r\nA = 'b'\r\n"},
      {"# in quotes", "[S]\na=\"b#c\" # d\ne='f#g'\n", false, "INI(S(FREEDATA A[REF=2]\"b#c\" E[REF=3]\"'f\"))",
       "[S]\r\nA = \"b#c\"\r\nE = \"'f\"\r\n"},
      {"two quoted parts", "[S]\na='b' 'c'\n", false, "INI(S(FREEDATA A[REF=3]\"'b' 'c'\"))",
       "[S]\r\nA = \"'b' 'c'\"\r\n"},
      {"empty value", "[S]\n\xE4 b=\n", false, "INI(S(FREEDATA \xE4 B[REF=0]))", "[S]\r\n\xE4 B = \r\n"},
      {"free keys", "[S]\n\"a\"=1\n'b'=2\n \"c\"=3\n", true,
       "INI(S(FREEDATA(a[REF=0]\"1\" b[REF=0]\"2\") C[REF=0]\"3\"))", "[S]\r\nC = 3\r\n"},
      {"comments", "[S]\n# a = b\na = b # c = d\n;x=y\n", false, "INI(S(FREEDATA A[REF=0]\"b\" ;X[REF=0]\"y\"))",
       "[S]\r\nA = b\r\n;X = y\r\n"},
      {"outside a section", "a=b\n[no end\nc=d\n[S]\n[S]\n", false, "INI(S(FREEDATA) S(FREEDATA))", "[S]\r\n[S]\r\n"},
      {"NUL", std::string("[S]\na = b\0c\n", 12), false, "INI(S(FREEDATA A[REF=0]\"b\"))", "[S]\r\nA = b\r\n"},
  };
  for (const auto& c : kCases) {
    CTreeDocument document;
    pktaus::TextStream stream;
    stream.OpenText(c.ini);
    EXPECT_TRUE(document.ReadIni(&stream, c.free_keys));
    EXPECT_EQ(TreeText(document.GetRoot()), c.tree) << c.what;
    std::string saved;
    pktaus::TextStream out;
    out.CreateText(&saved);
    document.WriteIni(&out);
    out.Close();
    EXPECT_EQ(saved, c.saved) << c.what;
  }
}

class InTempFolder : public testing::Test {
 protected:
  InTempFolder() {
    const char* set = getenv("TMPDIR");
    if (set != nullptr) before_ = set;
    setenv("TMPDIR", temp_.path().c_str(), 1);
  }
  ~InTempFolder() override { before_.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", before_.c_str(), 1); }

  TempFolder folder_;
  TempFolder temp_;
  std::string before_;
};

TEST_F(InTempFolder, StagingFollowsNoLink) {
  const std::string path = folder_.Write("a.xml", "<a>\n</a>");
  const std::string victim = folder_.Write("victim", "keep");
  std::filesystem::create_symlink(victim, temp_.File("a.xml.2Dos"));
  CTreeDocument document;
  EXPECT_TRUE(document.LoadXml(path, false));
  EXPECT_EQ(BytesOf(victim), "keep");
  EXPECT_FALSE(std::filesystem::is_symlink(temp_.File("a.xml.2Dos")));

  std::filesystem::remove(temp_.File("a.xml.2Dos"));
  std::filesystem::create_directory(temp_.File("a.xml.2Dos"));
  EXPECT_FALSE(document.LoadXml(path, false));   // the name cannot be freed
  EXPECT_EQ(TreeText(document.GetRoot()), "a");  // the document is as it was
}

TEST_F(InTempFolder, StagingFailsWhole) {
  const std::string path = folder_.Write("a.xml", "<a>\n</a>");
  for (int nth = 1;; ++nth) {
    support::FaultyFiles files(
        [nth](int call, const std::string& name) { return call == nth && name != "Remove" ? EIO : 0; });
    CTreeDocument document;
    const bool loaded = document.LoadXml(path, false);
    if (!loaded) {
      EXPECT_EQ(document.GetHeader()->GetName(), "?");
    }
    if (document.GetRoot() != nullptr) {
      EXPECT_EQ(TreeText(document.GetRoot()), "a");
    }
    if (files.calls() < nth) break;
  }
}

TEST_F(InTempFolder, SavesWholeOrNotAtAll) {
  for (const bool xml : {true, false}) {
    const std::string path = folder_.Write("out", "old");
    for (int nth = 1;; ++nth) {
      CTreeDocument document;
      pktaus::TextStream stream;
      stream.OpenText("[S]\nA = b\n");
      document.ReadIni(&stream, false);
      support::FaultyFiles files([nth](int call, const std::string&) { return call == nth ? EIO : 0; });
      const int saved = xml ? document.SaveXml(path) : document.SaveIni(path);
      const bool done = files.calls() < nth;
      const std::string stands = BytesOf(path);
      if (saved == 0) {
        EXPECT_EQ(stands, xml ? "<INI>\r\n<S>\r\n\t<FREEDATA></FREEDATA>\r\n\t<A REF=\"0\">b</A></S></INI>"
                              : "[S]\r\nA = b\r\n");
        folder_.Write("out", "old");
      } else {
        EXPECT_EQ(saved, -1);
        EXPECT_EQ(stands, "old") << nth;
      }
      EXPECT_EQ(document.GetPath(), saved == 0 && xml ? path : "");
      if (done) break;
    }
  }
}

TEST_F(InTempFolder, WhatCannotBeOpenedChangesNothing) {
  CTreeDocument document;
  document.SetRoot(document.NewNode("r"));
  EXPECT_FALSE(document.LoadXml(folder_.File("none"), false));
  EXPECT_FALSE(document.LoadXml(folder_.path(), false));
  EXPECT_FALSE(document.LoadIni(folder_.File("none"), false));
  EXPECT_EQ(document.SaveXml(folder_.File("no/folder")), -1);
  EXPECT_EQ(document.SaveIni(folder_.path()), -1);
  EXPECT_EQ(TreeText(document.GetRoot()), "r");
  EXPECT_EQ(document.GetPath(), "");
}

}  // namespace
