#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "fuzz/tree_inputs.h"
#include "platform/system.h"
#include "tests/support/faulty_files.h"
#include "tests/support/temp_folder.h"
#include "tree/staging.h"

namespace {

using namespace std::literals;
using pktaus::CTreeDocument;
using pktaus::CTreeNode;
using support::BytesOf;

/// Name, attributes in brackets, value in quotes, children in parentheses: a[b=c][d=e]"v"(f g"x"). "-" for no node.
/// Markup nodes have a "!" in front.
std::string TreeText(const CTreeNode* node) {
  if (node == nullptr) return "-";
  std::string text = dynamic_cast<const pktaus::CTreeMarkupNode*>(node) != nullptr ? "!" : "";
  text += node->GetName();
  for (const pktaus::CTreeAttribute* a = node->GetFirstAttribute(); a != nullptr; a = a->next) {
    text.append("[").append(node->GetDocument()->NameOf(a->name)).append("=").append(a->value.get()).append("]");
  }
  if (!node->GetValue().empty()) text.append("\"").append(node->GetValue()).append("\"");
  std::string children;
  for (const CTreeNode* child = node->GetFirstChild(); child != nullptr; child = child->GetNextSibling()) {
    children += (children.empty() ? "" : " ") + TreeText(child);
  }
  return children.empty() ? text : text + "(" + children + ")";
}

TEST(Node, FindsChildrenByLocalAndByWholeName) {
  const struct {
    const char *children, *name;
    const char *local, *whole;  // what is found by the local name, and by the whole one
  } kCases[] = {
      {"<b/><c:b/><a:b/>", "a:b", "b", "a:b"},
      {"<c:b/><a:b/>", "a:b", "a:b", "a:b"},
      {"<c:b/><b/>", "b", "c:b", "b"},
  };
  for (const auto& c : kCases) {
    const auto document = fuzz::LoadXml("<p>"s + c.children + "</p>");
    const CTreeNode* parent = document->GetRoot();
    EXPECT_EQ(TreeText(parent->FindChild(c.name, true)), c.local) << c.children << " / " << c.name;
    EXPECT_EQ(TreeText(parent->FindChild(c.name, false)), c.whole) << c.children << " / " << c.name;
    EXPECT_EQ(TreeText(parent->FindKey("=="s + c.name)), c.whole);
  }
}

TEST(Node, IsBuiltAndSearchedFromAStart) {
  CTreeDocument document;
  CTreeNode* node = document.NewNode("a:b:c");
  CTreeNode* first = document.NewNode("x");
  CTreeNode* second = document.NewNode("x");
  node->AddChild(first);
  node->AddChild(nullptr);
  node->AddChildAfter(second, first);
  for (const bool local : {true, false}) EXPECT_EQ(node->FindChild("x", local, second), second);
  node->SetAttribute("k", "1");
  node->SetAttribute("l", "2");
  node->SetAttribute("k", "3");
  for (const std::size_t size : {254U, 255U, 300U}) {  // on both sides of what a byte can tell
    node->SetValue(std::string(size - 5, 'v') + "value");
    EXPECT_EQ(node->GetValue().size(), size);
    node->SetValue(node->GetValue().substr(size - 5));
  }
  document.SetRoot(node);
  document.SetRoot(nullptr);
  EXPECT_EQ(document.GetName(), "a:b:c");
  EXPECT_EQ(TreeText(document.GetRoot()), "a:b:c[k=3][l=2]\"value\"(x x)");
  EXPECT_TRUE(fuzz::SaveXml(document).starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<a:b:c k=\"3\""));
}

// What the small worlds of tests/tree_oracle do not hold.
TEST(XmlReader, Trees) {
  const struct {
    const char* what;
    std::string xml;
    const char* tree;
  } kCases[] = {
      {"value is trimmed, inner blanks stay", "<a> \t\r\v\f te  xt\n </a>", "a\"te  xt\""},
      {"many attributes, two of them twice", "<a b=0 c=0 d=0 e=0 f=0 g=0 h=0 i=0 j=0 k=0 b=1 k=1/>",
       "a[b=1][c=0][d=0][e=0][f=0][g=0][h=0][i=0][j=0][k=1]"},
      {"single quotes are ordinary", "<a b='c'></a>", "a[b='c']"},
      {"umlauts in values alone", "<a b=\"\xC3\xA4\">\xC3\x84\xC3\x96\xC3\x9C\xC3\x9F\xC3\xA4\xC3\xB6\xC3\xBC</a>",
       "a[b=\xC3\xA4]\"\xC4\xD6\xDC\xDF\xE4\xF6\xFC\""},
      {"other letters stay", "<a>\xC3\xA9\xC3\xC3\xA4\xE4\xC3</a>", "a\"\xC3\xA9\xC3\xC3\xA4\xE4\xC3\""},
      {"text in front of a child", "<a>x<b></b></a>", "-"},
      {"attributes of a failed tag are nobody's", "<r><q><a x b=\"</q><c></c></r>", "r(q c)"},
  };
  for (const auto& c : kCases) EXPECT_EQ(TreeText(fuzz::LoadXml(c.xml)->GetRoot()), c.tree) << c.what;
}

/// With a folder for temporary files of their own.
class Files : public testing::Test {
 protected:
  Files() { setenv("TMPDIR", temp_.path().c_str(), 1); }
  ~Files() override { unsetenv("TMPDIR"); }

  support::TempFolder folder_;
  support::TempFolder temp_;
};

TEST_F(Files, AreStagedThroughNoLinkThatLiesInTheWay) {
  const std::string path = folder_.Write("a.xml", "<a>\n</a>");
  const std::string victim = folder_.Write("victim", "keep");
  const std::string copy = temp_.File("a.xml.2Dos");
  std::filesystem::create_symlink(victim, copy);
  EXPECT_EQ(pktaus::StageFile(path), copy);
  EXPECT_EQ(BytesOf(victim), "keep");
  EXPECT_FALSE(std::filesystem::is_symlink(copy));
  // A name that cannot be freed, as that of another user's copy.
  std::filesystem::remove(copy);
  std::filesystem::create_directories(copy + "/x");
  for (int time = 0; time < 2; ++time) {
    const std::string other = pktaus::StageFile(path).value_or("");
    EXPECT_EQ(BytesOf(other), "<a>\r\n</a>");
    EXPECT_EQ(other, temp_.File("a.xml." + platform::OwnUser() + "-0.2Dos"));
  }
}

TEST_F(Files, AndDocumentsAreOldOrNewAfterAnyFault) {
  const std::string kIni = "[S]\r\nA = b\r\n";
  const std::string kIniTree = "INI(S(FREEDATA A[REF=0]\"b\"))";
  const std::string value(300000, 'v');  // more than is read at once
  const struct {
    const char* name;
    bool (*act)(CTreeDocument*, const std::string& path);
    std::string old_file, new_file, new_tree;
  } kCases[] = {
      {"load XML by a copy", [](auto* document, const auto& path) { return document->LoadXml(path, false); },
       "<a>\n" + value + "</a>", "<a>\n" + value + "</a>", "a\"" + value + "\""},
      {"load ini", [](auto* document, const auto& path) { return document->LoadIni(path, false); }, "[T]" + value,
       "[T]" + value, "INI(T(FREEDATA))"},
      {"save XML", [](auto* document, const auto& path) { return document->SaveXml(path) == 0; }, "old",
       "<INI>\r\n<S>\r\n\t<FREEDATA></FREEDATA>\r\n\t<A REF=\"0\">b</A></S></INI>", kIniTree},
      {"save ini", [](auto* document, const auto& path) { return document->SaveIni(path) == 0; }, "old", kIni,
       kIniTree},
  };
  for (const auto& c : kCases) {
    bool reached = true;
    for (int nth = 1; reached; ++nth) {
      SCOPED_TRACE(c.name + std::to_string(nth));
      const std::string path = folder_.Write("a", c.old_file);
      CTreeDocument document;
      pktaus::TextStream stream;
      stream.OpenText(kIni);
      document.ReadIni(&stream, false);
      const support::FaultyFiles files([nth](int call, const std::string&) { return call == nth ? EIO : 0; });
      const bool done = c.act(&document, path);
      reached = files.calls() >= nth;
      EXPECT_TRUE(done || reached);
      EXPECT_TRUE(BytesOf(path) == (done ? c.new_file : c.old_file));
      // A file that breaks off while it is read has no tree.
      const std::string tree = TreeText(document.GetRoot());
      EXPECT_TRUE(tree == (done ? c.new_tree : kIniTree) || (done && reached && tree == "-")) << tree.substr(0, 99);
    }
  }
}

}  // namespace
