// Files that would cost a reader by trial far more than their size, and the limits of a tree.
#include <gtest/gtest.h>
#include <pthread.h>

#include <filesystem>
#include <functional>
#include <string>

#include "fuzz/tree_inputs.h"
#include "tests/support/temp_folder.h"

namespace {

using pktaus::CTreeDocument;
using pktaus::CTreeNode;

std::string Times(std::size_t n, const std::string& text) {
  std::string all;
  for (std::size_t i = 0; i < n; ++i) all += text;
  return all;
}

TEST(Hostile, EndsWithoutARootWhereReadingWouldCostTooMuch) {
  const struct {
    const char* what;
    std::function<std::string(std::size_t)> xml;
    std::size_t most;  // how large n may be for the levels that the reader allows
  } kFamilies[] = {
      {"doubled tags", [](auto n) { return "<r>" + Times(n, "<a><a></a>"); }, 9000},
      {"lists in lists", [](auto n) { return Times(n, "<u>") + Times(n, "<li><u><li>x</li>") + Times(n, "</u>"); },
       3000},
      {"comments and sections that swallow end tags",
       [](auto n) { return "<r>" + Times(n, "<g><p><!--</g><g><p><![</g>") + Times(n, "]x") + "</r>"; }, 20000},
      {"quotes that swallow tags up to one end",
       [](auto n) { return "<r>" + Times(n, "<g><p><![\"]x<a \"</g>") + "\"/></r>"; }, 20000},
      {"a name in a name that ends with the file",
       [](auto n) { return "<r>" + Times(n, "<A><g><![</A>") + Times(n, "]x<b"); }, 9000},
      {"a name in a name with a long run of slashes",
       [](auto n) { return "<r>" + Times(n, "<A><g><![</A>") + Times(n, "]x<b") + Times(99 * n, "/") + "></r>"; }, 240},
  };
  for (const auto& family : kFamilies) {
    // A small file too: what doubles with every tag shows there first.
    for (const std::size_t n : {std::size_t{32}, family.most}) {
      const std::string xml = family.xml(n);
      CTreeDocument document;
      pktaus::TextStream stream;
      stream.OpenText(xml);
      document.ReadXml(&stream);
      EXPECT_LE(stream.ByteReads(), fuzz::MostReads(xml.size())) << family.what;
      EXPECT_TRUE(n < family.most || document.GetRoot() == nullptr) << family.what;
    }
  }
}

TEST(Hostile, TellsWhereAFileStopsBeingXml) {
  using Kind = pktaus::XmlFault::Kind;
  const std::string deep = Times(static_cast<std::size_t>(pktaus::kMaxDepth) + 1, "<a>");
  const struct {
    std::string xml;
    Kind kind;
    std::uint64_t offset, line;
  } kCases[] = {
      {"<a>\r\n</a>", Kind::kNone, 0, 0},
      {"<!DOCTYPE " + std::string(100'000, 'n') + " \"" + std::string(2000, 'm') + "\">\n<r/>", Kind::kNone, 0, 0},
      {"<!" + std::string(2000, 'n') + ">\n<r/>", Kind::kNone, 0, 0},
      {"", Kind::kNoElement, 0, 1},
      {"<?a?>\n<?b?>\n<r/>", Kind::kNoElement, 5, 1},
      {"<r>\r\n<a></b>\r\n</r>", Kind::kNotClosed, 7, 2},
      {"<r>\n<a>x\n<b/></a></r>", Kind::kNotClosed, 9, 3},
      {"<r>\n\n<a>", Kind::kNotClosed, 8, 3},
      {deep, Kind::kTooDeep, deep.size(), 1},
      {"<r><" + std::string(2000, 'n') + "/></r>", Kind::kName, 2006, 1},
      {"<r>\n" + Times(9000, "<a><a></a>\n"), Kind::kTooOften, 0, 0},
  };
  for (const auto& c : kCases) {
    CTreeDocument document;
    pktaus::TextStream stream;
    stream.OpenText(c.xml);
    document.ReadXml(&stream);
    const pktaus::XmlFault& fault = document.GetXmlFault();
    EXPECT_EQ(fault.kind, c.kind) << c.xml.substr(0, 40);
    EXPECT_EQ(document.GetRoot() == nullptr, c.kind != Kind::kNone);
    if (c.kind == Kind::kTooOften) continue;  // wherever the bound was passed
    EXPECT_EQ(fault.offset, c.offset) << c.xml.substr(0, 40);
    EXPECT_EQ(fault.line, c.line) << c.xml.substr(0, 40);
  }
}

// The host's own threads have this much.
void RunWithSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 1024 * 1024);
  pthread_t thread{};
  const auto run = [](void* given) -> void* {
    (*static_cast<std::function<void()>*>(given))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string Nested(std::size_t levels) { return Times(levels, "<a>") + Times(levels, "</a>"); }

TEST(Hostile, DepthHasALimitAndCostsNoStack) {
  constexpr std::size_t kMost = pktaus::kMaxDepth;
  const std::pair<std::string, bool> kLoads[] = {
      {Nested(kMost), true},
      {Nested(kMost + 1), false},
      {Times(kMost, "<a>") + "<a/>" + Times(kMost, "</a>"), false},
      {Times(kMost, "<a>") + "<!---->" + Times(kMost, "</a>"), true},
      {"<a>" + Times(kMost, "<b>") + "</a>", false},
      {Nested(1000000), false},
  };
  RunWithSmallStack([&] {
    for (const auto& [xml, loads] : kLoads) {
      const auto document = fuzz::LoadXml(xml);
      ASSERT_EQ(document->GetRoot() != nullptr, loads) << xml.size();
      const auto again = fuzz::LoadXml(fuzz::SaveXml(*document));
      EXPECT_EQ(again->GetRoot() != nullptr, loads);
    }
  });
}

TEST(Hostile, NamesHaveALimitAndValuesHaveNone) {
  const std::string longest(pktaus::kMaxNameLength, 'n');
  const std::string value(500000, 'v');
  const std::pair<std::string, bool> kLoads[] = {
      {"<" + longest + "/>", true},
      {"<r><" + longest + "n/></r>", false},
      {"<a " + longest + "=1/>", true},
      {"<a " + longest + "n=1/>", false},
      {"<a b=\"" + value + "\">" + value + "</a>", true},
  };
  for (const auto& [xml, loads] : kLoads) {
    const auto document = fuzz::LoadXml(xml);
    ASSERT_EQ(document->GetRoot() != nullptr, loads) << xml.substr(0, 9);
    EXPECT_EQ(fuzz::SaveXml(*fuzz::LoadXml(fuzz::SaveXml(*document))), fuzz::SaveXml(*document));
    if (loads && xml.size() > value.size()) {
      EXPECT_EQ(document->GetRoot()->GetValue(), value);
      EXPECT_EQ(document->GetRoot()->GetAttribute("b"), value);
    }
  }
  // The program's own names: what cannot be named is not written under another name.
  CTreeDocument document;
  CTreeNode* node = document.NewNode("a");
  document.SetRoot(node);
  node->AddChild(document.NewNode(longest + "1"));
  EXPECT_EQ(node->FindChild(longest + "2", false), nullptr);
  const support::TempFolder folder;
  EXPECT_EQ(document.SaveXml(folder.File("a")), -1);
}

TEST(Hostile, ABucketOfNamesIsFullAtItsLastNumber) {
  pktaus::CNameTable names;
  std::string name(300, 'n');
  pktaus::NameId last = 0;
  for (int i = 0; i <= pktaus::CNameTable::kMaxPerBucket; ++i) {
    // Every hundredth byte has no weight in the hash, so these share a bucket.
    for (std::size_t at = 99, n = i; at < 300; at += 100, n /= 64) name[at] = static_cast<char>('@' + n % 64);
    last = names.Intern(name);
    ASSERT_EQ(last == pktaus::kNoName, i == pktaus::CNameTable::kMaxPerBucket) << i;
  }
}

TEST(Hostile, CorpusOfTheFuzzersCutAnywhere) {
  std::size_t count = 0;
  for (const auto& [kind, check] : {std::pair("xml", &fuzz::TryXml), std::pair("ini", &fuzz::TryIni)}) {
    for (const auto& entry :
         std::filesystem::directory_iterator(PKTAUS_SOURCE_DIR "/fuzz/corpus/" + std::string(kind))) {
      SCOPED_TRACE(entry.path().string());
      const std::string bytes = support::BytesOf(entry.path());
      for (std::size_t cut = 0; cut <= bytes.size(); ++cut) check(bytes.substr(0, cut));
      ++count;
    }
  }
  EXPECT_GE(count, 10U);
}

}  // namespace
