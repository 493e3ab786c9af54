// Small worlds of texts, and broken documents of the usual kind, through the real readers and writers and through the
// naive ones.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "fuzz/comparison.h"
#include "fuzz/reference_tree.h"
#include "tests/support/temp_folder.h"
#include "tree/staging.h"

namespace {

using Tokens = std::vector<std::string>;
using Compare = std::string (fuzz::Comparison::*)(std::string_view);

const std::string kNul(1, '\0');

/// Texts from tokens, put into the frame at each '%': all of up to `most` tokens, and longer ones by chance, in which
/// constructs that failed are tried again behind others that failed.
struct World {
  Tokens tokens;
  int most;
  std::string frame;
};

class AgainstReference : public testing::Test {
 protected:
  std::size_t Below(std::size_t n) { return static_cast<std::size_t>(random_()) % n; }

  void CheckText(const World& world, Compare compare, const std::string& text) {
    std::string bytes;
    for (const char c : world.frame) bytes += c == '%' ? text : std::string(1, c);
    ASSERT_EQ((comparison_.*compare)(bytes), "") << world.frame;
  }
  void CheckAll(const World& world, Compare compare, int most, const std::string& text) {
    CheckText(world, compare, text);
    if (most == 0 || HasFailure()) return;
    for (const std::string& token : world.tokens) CheckAll(world, compare, most - 1, text + token);
  }
  void CheckWorlds(const std::vector<World>& worlds, Compare compare) {
    for (const World& world : worlds) {
      CheckAll(world, compare, world.most, "");
      for (int i = 0; i < 5000 && !HasFailure(); ++i) {
        std::string text;
        for (std::size_t length = Below(25); length > 0; --length) text += world.tokens[Below(world.tokens.size())];
        CheckText(world, compare, text);
      }
    }
  }

  std::mt19937 random_{20160302};
  fuzz::Comparison comparison_;
};

TEST_F(AgainstReference, XmlWorlds) {
  const std::vector<World> kWorlds = {
      {{"<", ">", "/", "a", "\"", "!", "-", " "}, 5, "%"},
      {{"<a>", "</a>", "<b>", "</b>", "<a/>", "<", "x", "\n"}, 5, "<a>%</a>"},
      {{"<a", "</a>", "</b>", ">", "<b>", "\"", "/>", "</"}, 5, "<b>%</b>"},
      {{"<a c>", "</a>", "<b c/>", "<a>", " "}, 6, "<r>%</r>"},
      {{"<!--", "-->", "<![", "[", "]", ">", "/>", "x", "<a>", "</a>", "<!a>"}, 4, "<a>%</a>"},
      {{"<!", "<!/-->", "</-->", "<!/[>", "</[>", "-", "]", "[", "?>", "a", " "}, 4, "<r>%</r>"},
      {{" ", "b", "c", "=", "\"", "/", ">", "<"}, 5, "<a %>x</a>"},
      {{" ", "\t", "\r", "a:", "=", "/", "'", "?", kNul}, 4, "<r><%a%>x</%a%></r>"},
      {{"<?", "?>", "<!DOCTYPE", "<!--", "-->", ">", " ", "x", "</DOCTYPE>", "<![", "\x80"}, 4, "%<r/>"},
      {{"\xEF", "\n", "<!DOCTYPE a>", "<!a/>", "</a>", "</-->", "<?b?>"}, 4, "<?h?>%<r>x</r>%"},
      {{"\xC3", "\xA4", "\xE4", "\x84", " ", "\r", "\n", kNul}, 4, "<?h%?><r %=\"%\"><!--%--><![%]>%</r>"},
      {{"<gmd:CI_ResponsibleParty>", "</gmd:CI_ResponsibleParty>", "<a>", "</a>", "x"}, 5, "%"},
  };
  CheckWorlds(kWorlds, &fuzz::Comparison::Xml);
}

TEST_F(AgainstReference, IniWorlds) {
  const std::vector<World> kWorlds = {
      {{"[", "]", "a", "=", "\n", "#", "'", "\""}, 4, "%"},
      {{"[", "]", "a", "=", "\r\n", "#", "'", "\"", kNul}, 5, "[s]x\n%"},
      {{"'", "\"", "#", "a", " ", "\t", "\r", "\xE4", "="}, 5, "[s]\nz\xFC=%\n%=v"},
  };
  CheckWorlds(kWorlds, &fuzz::Comparison::Ini);
  // Lines come in pieces of 999 bytes within a section and of 1999 bytes outside of one.
  for (const char* frame : {"[s]\n%=v\nb=c", "[s]\na=%[t]\nb=c", "[%s]\nb=c", "x%\n[s]\nb=c"}) {
    for (std::size_t size = 987; size < 4000; size += size % 1000 == 1 ? 986 : 1) {
      CheckText({{}, 0, frame}, &fuzz::Comparison::Ini, std::string(size, 'k'));
    }
  }
}

// The window on a file ends at any place of a text: within CR LF, within a mark, within what is read again.
TEST_F(AgainstReference, BrokenNasDocumentsInMemoryAndInFilesLongerThanTheWindow) {
  const Tokens kBits = {"<", ">", "/", "</", "/>", "\"", "=", " ", "<!--", "-->", "<![", "]>", "\n", "\r", "<!a>"};
  const std::string nas = support::BytesOf(PKTAUS_SOURCE_DIR "/fuzz/corpus/xml/nas.xml");
  const support::TempFolder folder;
  setenv("TMPDIR", folder.path().c_str(), 1);
  for (int i = 0; i < 10000 && !HasFailure(); ++i) {
    std::string text = nas;
    for (std::size_t steps = 1 + Below(3); steps > 0; --steps) {
      const std::string copy = text.substr(Below(text.size()), Below(200));
      text.replace(Below(text.size()), Below(2) * Below(40), Below(3) == 0 ? copy : kBits[Below(kBits.size())]);
    }
    EXPECT_EQ(comparison_.Xml(text), "");
    if (i % 500 != 0) continue;
    const bool sound = i % 1000 == 0, scan_all = i % 1500 == 0;
    std::string bytes = "<R><r>" + std::string(i / 1000, ' ');
    const std::size_t size = 512U * 1024 - Below(2000);
    while (bytes.size() < size) bytes += sound ? "<v>\xC3\xA4</v>\r\n" : "<v w=\"x\"/><!---->\n";
    bytes += "</r>\n" + (sound ? nas : text).substr(40) + "<x>" + std::string(400000, 'v') + "</R>";
    const std::string file = folder.Write("f.xml", bytes);
    pktaus::CTreeDocument document;
    EXPECT_TRUE(document.LoadXml(file, scan_all));
    const reference::Document expected = reference::ReadXml(bytes);
    EXPECT_TRUE(fuzz::Tree(document) == fuzz::Tree(expected)) << fuzz::Legible(text);
    EXPECT_EQ(document.GetPath(), reference::NeedsStaging(bytes, scan_all) ? folder.File("f.xml.2Dos") : file);
    EXPECT_TRUE(support::BytesOf(pktaus::StageFile(file).value()) == reference::Staged(bytes));
    EXPECT_EQ(document.SaveXml(file), 0);
    EXPECT_TRUE(support::BytesOf(file) == reference::WriteXml(expected)) << fuzz::Legible(text);
  }
  unsetenv("TMPDIR");
}

TEST_F(AgainstReference, NameIds) {
  pktaus::CNameTable names;
  std::map<int, Tokens> chains;
  for (int i = 0; i < 40000; ++i) {
    std::string name(Below(8) == 0 ? Below(1004) : Below(4), '\0');
    for (char& c : name) c = static_cast<char>(1 + Below(127));
    Tokens& chain = chains[reference::Bucket(name)];
    const auto position = std::find(chain.begin(), chain.end(), name) - chain.begin();
    if (position == std::ssize(chain)) chain.push_back(name);
    const pktaus::NameId id = names.Intern(name);
    ASSERT_EQ(id, position * 65536 + reference::Bucket(name)) << fuzz::Legible(name);
    ASSERT_EQ(names.NameOf(id), name);
  }
}

}  // namespace
