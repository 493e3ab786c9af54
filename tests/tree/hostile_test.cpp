// Files that would cost a reader by trial far more than their size, and the limits of a tree.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "fuzz/tree_inputs.h"
#include "tests/tree/small_stack.h"
#include "tests/tree/tree_text.h"

namespace {

using pktaus::CTreeDocument;
using pktaus::CTreeNode;
using support::ReadXmlText;
using support::TreeText;

std::string Times(std::size_t n, const std::string& text) {
  std::string all;
  for (std::size_t i = 0; i < n; ++i) all += text;
  return all;
}

std::string Attributes(std::size_t n) {
  std::string all;
  for (std::size_t i = 0; i < n; ++i) all += " a" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
  return all;
}

TEST(Hostile, ReadsEachByteAFewTimes) {
  const struct {
    const char* what;
    std::function<std::string(std::size_t)> xml;
    std::size_t most;  // how large n may be for the levels that the reader allows
    const char* tree;  // for n = 3
  } kFamilies[] = {
      {"doubled tags", [](auto n) { return "<r>" + Times(n, "<a><a></a>"); }, 9000, "-"},
      {"lists in lists", [](auto n) { return Times(n, "<u>") + Times(n, "<li><u><li>x</li>") + Times(n, "</u>"); },
       3000, "-"},
      {"tags as names", [](auto n) { return Times(n, "<</a><a><a>"); }, 3000, "-"},
      {"never closed", [](auto n) { return Times(n, "<a>"); }, 100000, "-"},
      {"never closed in a root", [](auto n) { return "<r>" + Times(n, "<a>") + "</r>"; }, 9000, "r"},
      {"many attributes", [](auto n) { return "<a" + Attributes(n) + "/>"; }, 100000, "a[a0=0 a1=1 a2=2]"},
      {"open sections", [](auto n) { return "<r>" + Times(n, "<g><p><![</g>") + "</r>"; }, 20000, "r(g g g)"},
      {"sections that end one by one",
       [](auto n) { return "<r>" + Times(n, "<g><p><![</g>") + Times(n, "]x") + "</r>"; }, 20000, "r\"]x]x]x\"(g g g)"},
      {"quotes that swallow tags up to one end",
       [](auto n) { return "<r>" + Times(n, "<g><p><![\"]x<a \"</g>") + "\"/></r>"; }, 20000, "r\"\"/>\"(g g g)"},
      {"end tags as attributes, then children",
       [](auto n) { return "<q>" + Times(n, "<r><s </r>") + Times(n, "<x/>") + "</q>"; }, 9000, "q(r r r x x x)"},
      {"end tags as attributes, then a long value",
       [](auto n) { return "<q>" + Times(n, "<r><s </r>") + Times(n, "xyz") + "</q>"; }, 9000, "q\"xyzxyzxyz\"(r r r)"},
      {"names that the end of the file cuts off",
       [](auto n) { return "<r>" + Times(n, "<A><g><![</A>") + Times(n, "]x<b"); }, 9000, "-"},
      {"a name in a name, with a long run of slashes",
       [](auto n) { return "<r>" + Times(240, "<A><g><![</A>") + Times(240, "]x<b") + Times(n, "/") + "></r>"; },
       100000, nullptr},
      {"a name in a name, in many pieces",
       [](auto n) {
         const std::size_t k = std::min<std::size_t>(n, 100);
         return "<r>" + Times(k, "<A><g><![</A>") + Times(k, "]x<b") + Times(k, "b///////") + "></r>";
       },
       100, "-"},
      {"quotes alone", [](auto n) { return "<r>" + Times(n, "<a \"") + "</r>"; }, 100000, nullptr},
      {"high bytes", [](auto n) { return "<?x?>" + Times(n, "\xFF") + "<a>" + Times(n, "\xC3\xA4\xC3") + "</a>"; },
       100000, nullptr},
  };
  for (const auto& family : kFamilies) {
    if (family.tree != nullptr) {
      EXPECT_EQ(TreeText(ReadXmlText(family.xml(3))->GetRoot()), family.tree) << family.what;
    }
    // A small file too: what doubles with every tag shows there first.
    for (const std::size_t n : {std::size_t{32}, family.most}) {
      const std::string xml = family.xml(n);
      CTreeDocument document;
      pktaus::TextStream stream;
      stream.OpenText(xml);
      document.ReadXml(&stream);
      EXPECT_LE(stream.ByteReads(), fuzz::kMostReads * xml.size()) << family.what;
    }
  }
}

std::string Nested(std::size_t levels) { return Times(levels, "<a>") + Times(levels, "</a>"); }

TEST(Hostile, DepthCostsNoStack) {
  constexpr std::size_t kMost = pktaus::kMaxDepth;
  const struct {
    std::string xml;
    bool loads;
  } kCases[] = {
      {Nested(kMost), true},
      {Nested(kMost + 1), false},
      {Times(kMost - 1, "<a>") + "<a/>" + Times(kMost - 1, "</a>"), true},
      {Times(kMost, "<a>") + "<a/>" + Times(kMost, "</a>"), false},
      {Times(kMost, "<a>") + "<!---->" + Times(kMost, "</a>"), true},
      {"<a>" + Times(kMost, "<b>") + "</a>", false},
      {Nested(1000000), false},
  };
  support::RunWithSmallStack([&kCases] {
    for (const auto& c : kCases) {
      const auto document = ReadXmlText(c.xml);
      ASSERT_EQ(document->GetRoot() != nullptr, c.loads) << c.xml.size();
    }
    const auto document = ReadXmlText(Nested(5000));
    const auto again = ReadXmlText(fuzz::SaveXml(*document));
    std::size_t levels = 0;
    for (const CTreeNode* node = again->GetRoot(); node != nullptr; node = node->GetFirstChild()) ++levels;
    EXPECT_EQ(levels, 5000U);
  });
}

// The levels count from where a known list is used again, not from where it was read first.
TEST(Hostile, DepthOfWhatIsReadAgain) {
  const std::size_t half = pktaus::kMaxDepth / 2;
  const std::string blocks = Times(2, "<r><s </r>");
  const auto tree = [&](std::size_t levels) {
    return ReadXmlText(Times(half, "<q>") + blocks + Nested(levels) + Times(half, "</q>"));
  };
  EXPECT_NE(tree(half - 5)->GetRoot(), nullptr);
  EXPECT_EQ(tree(half + 1)->GetRoot(), nullptr);
}

// Every hundredth byte has no weight in the hash, so these share a bucket.
std::string CrowdedName(int n) {
  std::string name(300, 'n');
  for (std::size_t at = 99; at < 300; at += 100, n /= 64) name[at] = static_cast<char>('@' + n % 64);
  return name;
}

TEST(Hostile, NamesAndValuesBeyondAnyBuffer) {
  const std::string longest(pktaus::kMaxNameLength, 'n');
  const std::string value(500000, 'v');
  const struct {
    const char* what;
    std::string xml;
    bool loads;
  } kCases[] = {
      {"longest element name", "<" + longest + "/>", true},
      {"element name too long", "<" + longest + "n/>", false},
      {"name too long of a child", "<r><" + longest + "n/></r>", false},
      {"longest attribute name", "<a " + longest + "=1/>", true},
      {"attribute name too long", "<a " + longest + "n=1/>", false},
      {"long values", "<a b=\"" + value + "\">" + value + "</a>", true},
  };
  for (const auto& c : kCases) {
    const auto document = ReadXmlText(c.xml);
    ASSERT_EQ(document->GetRoot() != nullptr, c.loads) << c.what;
    if (c.loads) {
      EXPECT_NE(ReadXmlText(fuzz::SaveXml(*document))->GetRoot(), nullptr) << c.what;
    }
  }
  const auto document = ReadXmlText(kCases[5].xml);
  EXPECT_EQ(document->GetRoot()->GetValue(), value);
  EXPECT_EQ(document->GetRoot()->GetAttribute("b"), value);
}

TEST(Hostile, MoreNamesThanABucketNumbers) {
  std::string xml = "<r>";
  std::string ini = "[S]\n";
  for (int i = 0; i < 33000; ++i) {
    if (i == pktaus::CNameTable::kMaxPerBucket) {
      EXPECT_NE(ReadXmlText(xml + "</r>")->GetRoot(), nullptr);
    }
    xml += "<" + CrowdedName(i) + "/>";
    ini += "\"" + CrowdedName(i) + "\" = " + std::to_string(i) + "\n";
  }
  const auto document = ReadXmlText(xml + "</r>");
  EXPECT_EQ(document->GetRoot(), nullptr);

  // The program's own names: what cannot be named is not written under another name.
  CTreeNode* node = document->NewNode("a");
  document->SetRoot(node);
  EXPECT_EQ(node->FindChild(CrowdedName(32999), false), nullptr);
  node->AddChild(document->NewNode(CrowdedName(32999)));
  EXPECT_EQ(node->FindChild(CrowdedName(32998), false), nullptr);
  EXPECT_EQ(document->SaveXml("/dev/null/x"), -1);

  CTreeDocument settings;
  pktaus::TextStream stream;
  stream.OpenText(ini);
  ASSERT_TRUE(settings.ReadIni(&stream, true));
  int keys = 0;
  const CTreeNode* free_data = settings.GetRoot()->GetFirstChild()->GetFirstChild();
  for (const CTreeNode* key = free_data->GetFirstChild(); key != nullptr; key = key->GetNextSibling(), ++keys) {
    ASSERT_EQ(key->GetName(), CrowdedName(keys));
    ASSERT_EQ(key->GetValue(), std::to_string(keys));
  }
  EXPECT_EQ(keys, pktaus::CNameTable::kMaxPerBucket);
}

TEST(Hostile, CorpusOfTheFuzzers) {
  std::size_t count = 0;
  for (const char* kind : {"xml", "ini"}) {
    const std::string folder = std::string(PKTAUS_SOURCE_DIR) + "/fuzz/corpus/" + kind;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      SCOPED_TRACE(entry.path().string());
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file), {}};
      ++count;
      for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        (std::string_view(kind) == "xml" ? fuzz::TryXml : fuzz::TryIni)(std::string_view(bytes).substr(0, cut));
      }
    }
  }
  EXPECT_GE(count, 10U);
}

}  // namespace
