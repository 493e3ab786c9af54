// Whole small worlds of texts, and broken documents of the usual kind, through the real readers and writers and through
// the naive ones. PKTAUS_ORACLE=1 in the environment makes each world one step longer.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "fuzz/comparison.h"
#include "fuzz/reference_tree.h"
#include "tests/support/temp_folder.h"
#include "tree/document.h"
#include "tree/name_table.h"
#include "tree/staging.h"
#include "tree/text_stream.h"

namespace {

const std::string kNul(1, '\0');

using fuzz::Legible;
using fuzz::Tree;
using pktaus::CTreeDocument;

// Compares text by text, and stops at a handful of differences.
struct Oracle {
  int texts = 0;
  int differences = 0;
  fuzz::Comparison comparison;

  void Check(std::string (fuzz::Comparison::*compare)(std::string_view), const std::string& bytes) {
    if (differences > 5) return;
    ++texts;
    const std::string told = (comparison.*compare)(bytes);
    if (told.empty()) return;
    ++differences;
    ADD_FAILURE() << told;
  }
  void Xml(const std::string& bytes) { Check(&fuzz::Comparison::Xml, bytes); }
  void Ini(const std::string& bytes) { Check(&fuzz::Comparison::Ini, bytes); }
};

/// All texts of up to `most` tokens, put into the frame at each '%'.
struct World {
  const char* name;
  std::vector<std::string> tokens;
  int most;
  std::string frame;
};

template <typename Check>
void ForEach(const World& world, int most, const std::string& text, const Check& check) {
  std::string bytes;
  for (const char c : world.frame) bytes += c == '%' ? text : std::string(1, c);
  check(bytes);
  if (most == 0) return;
  for (const std::string& token : world.tokens) ForEach(world, most - 1, text + token, check);
}

// The sanitizers take thirty times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr int kUsual = -1;
#else
constexpr int kUsual = 0;
#endif

int Longer() { return getenv("PKTAUS_ORACLE") != nullptr ? 1 : kUsual; }

/// A number of random texts: many, the usual or few.
int Many(int many, int usual) { return Longer() > 0 ? many : Longer() == 0 ? usual : usual / 10; }

void CheckWorlds(const std::vector<World>& worlds, void (Oracle::*check)(const std::string&)) {
  for (const World& world : worlds) {
    SCOPED_TRACE(world.name);
    Oracle oracle;
    ForEach(world, world.most + Longer(), "", [&](const std::string& bytes) { (oracle.*check)(bytes); });
    EXPECT_GT(oracle.texts, 0);
  }
}

TEST(AgainstReference, SmallXmlWorlds) {
  CheckWorlds(
      {
          {"characters", {"<", ">", "/", "a", "\"", "!", "-", " "}, 6, "%"},
          {"elements", {"<a>", "</a>", "<b>", "</b>", "<a/>", "x", " "}, 6, "<a>%</a>"},
          {"elements without a frame", {"<a>", "</a>", "<b>", "</b>", "<", "</", "\n"}, 5, "%"},
          {"broken tags", {"<a", "</a>", "</b>", ">", "<b>", "\"", "/>"}, 5, "<b>%</b>"},
          {"markup", {"<!--", "-->", "<![", "[", "]", ">", "/>", "x", "<a>", "</a>"}, 5, "<a>%</a>"},
          {"markup tags", {"<!", "<!/", "</", "a", "--", "[", ">", "/", " "}, 5, "<r>%</r>"},
          {"marks inside markup", {"<!/-->", "</-->", "<!/[>", "</[>", "-", "]", "[", "?>", "<!--"}, 4, "<r>%</r>"},
          {"attributes", {" ", "b", "c", "=", "\"", "/", ">", "<"}, 5, "<a %>x</a>"},
          {"names", {" ", "\t", "\n", "\r", "a:", "=", "/", "'", "?", kNul}, 4, "<r><%a%>x</%a%></r>"},
          {"prolog",
           {"<?", "?>", "<!DOCTYPE", "<!--", "-->", ">", " ", "x", "</DOCTYPE>", "<![", "\x80", "<"},
           4,
           "%<r/>"},
          {"behind the prolog",
           {"\xEF\xBB\xBF", "\n", "<!DOCTYPE a>", "<!a/>", "</a>", "<!--c-->", "</-->", "<?b?>", "]"},
           5,
           "<?h?>%<r>x</r>%"},
          {"text",
           {"\xC3", "\xA4", "\xE4", "\x84", "A", " ", "\r", "\n", kNul},
           4,
           "<?h%?><r %=\"%\">%<!--%--><![%]>%</r>"},
          {"dropped",
           {"<gmd:CI_ResponsibleParty>", "</gmd:CI_ResponsibleParty>", "<a>", "</a>", "x", "<!gmd:CI_ResponsibleParty>",
            "<gmd:CI_ResponsibleParty/>"},
           5,
           "%"},
      },
      &Oracle::Xml);
}

const std::string kNas =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!DOCTYPE auftrag>\r\n<!-- Kopf -->\r\n"
    "<AX_Auftrag xmlns=\"http://a/b/6.0\" xmlns:gml='g'  xsi:schemaLocation=\"a b.xsd\">\r\n"
    "\t<antragsnummer/><auftragsnummer></auftragsnummer>\r\n"
    "\t<empfaenger><gmd:CI_ResponsibleParty a=\"b\"><gmd:name>Stra\xC3\x9F"
    "e</gmd:name></gmd:CI_ResponsibleParty></empfaenger>\r\n"
    "\t<!-- M\xC3\xBCller -- x/y -->\r\n"
    "\t<geaenderteObjekte><wfs:Transaction version=\"1.0.0\" service=\"WFS\">\r\n"
    "\t\t<wfs:Insert><AX_Grenzpunkt gml:id=\"DEHE\">\r\n"
    "\t\t\t<lebenszeitintervall><AA_Lebenszeitintervall><beginnt>2016-03-02T09:05:03Z</beginnt></"
    "AA_Lebenszeitintervall>"
    "</lebenszeitintervall>\r\n"
    "\t\t\t<abmarkung_Marke>1110</abmarkung_Marke><gml:pos>32477000.123 5553000.456</gml:pos>\r\n"
    "\t\t</AX_Grenzpunkt></wfs:Insert>\r\n"
    "\t\t<wfs:Delete typeName=\"AX_PunktortTA\"><ogc:Filter/>\xC3\xA9 &amp; \xE4</wfs:Delete>\r\n"
    "\t</wfs:Transaction></geaenderteObjekte>\r\n"
    "\t<![CDATA[a[0]]]>text\r\n"
    "</AX_Auftrag>\r\n";

/// `number` documents, each kNas with one to three cuts, copies or insertions.
std::vector<std::string> BrokenDocuments(int number) {
  const std::string kBits[] = {"<",    ">",   "/",  "</", "/>", "\"", "=",   " ",    "<!--",          "-->",
                               "<![",  "]>",  "<?", "?>", "\n", "\r", "<a>", "</a>", "</AX_Auftrag>", "\xC3",
                               "\x80", "<!a>"};
  std::mt19937 random(20160302);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  std::vector<std::string> documents = {kNas};
  while (documents.size() < static_cast<std::size_t>(number)) {
    std::string text = kNas;
    for (std::size_t steps = 1 + below(3); steps > 0; --steps) {
      const std::size_t at = below(text.size());
      switch (below(4)) {
        case 0:
          text.erase(at, 1 + below(40));
          break;
        case 1:
          text.insert(at, text.substr(below(text.size()), 1 + below(200)));
          break;
        case 2:
          text.replace(at, 1, kBits[below(std::size(kBits))]);
          break;
        default:
          text.insert(at, kBits[below(std::size(kBits))]);
      }
    }
    documents.push_back(text);
  }
  return documents;
}

// Longer chains of tokens, where an element that failed is tried again behind others that failed.
TEST(AgainstReference, ChainsOfTags) {
  const std::vector<std::string> kBits = {"<a>",  "<a>", "</a>", "</a>", "<b>",  "</b>", "<a", "</", ">", "x",   "<",
                                          "<!--", "-->", "<![",  "]>",   "<!a>", "<!b>", "/>", "\"", " ", "<b/>"};
  std::mt19937 random(1);
  Oracle oracle;
  for (int i = 0; i < Many(2000000, 50000); ++i) {
    const std::size_t kinds = 2 + random() % (kBits.size() - 1);
    const std::size_t first = random() % kBits.size();
    std::string text = "<a>";
    for (std::size_t length = random() % 25; length > 0; --length) {
      text += kBits[(first + random() % kinds) % kBits.size()];
    }
    oracle.Xml(text + "</a>");
  }
}

TEST(AgainstReference, BrokenNasDocuments) {
  Oracle oracle;
  for (const std::string& text : BrokenDocuments(Many(200000, 20000))) oracle.Xml(text);
}

// The folder for temporary files, for a block.
class TemporaryFiles : public support::TempFolder {
 public:
  TemporaryFiles() { setenv("TMPDIR", path().c_str(), 1); }
  ~TemporaryFiles() { unsetenv("TMPDIR"); }
};

// The window on a file ends at any place of a text: within CR LF, within a mark, within what is read again.
TEST(AgainstReference, FilesLongerThanTheWindow) {
  const TemporaryFiles folder;
  std::vector<std::string> documents = BrokenDocuments(30);
  for (std::size_t i = 0; i < documents.size(); ++i) {
    std::string bytes = "<R><r>";
    while (bytes.size() < 256 * 1024 * (1 + i % 2) - i % 97 * 23)
      bytes += i % 2 ? "<v>\xC3\xA4</v>\r\n" : "<v w=\"x\"/><!---->\n";
    bytes += "</r>" + documents[i].substr(std::min<std::size_t>(documents[i].size(), 80)) + "</R>";
    const std::string file = folder.Write("f.xml", bytes);
    CTreeDocument document;
    ASSERT_TRUE(document.LoadXml(file, false));
    const reference::Document expected = reference::ReadXml(bytes);
    ASSERT_TRUE(Tree(document) == Tree(expected)) << i << ": " << Legible(documents[i]);
    ASSERT_EQ(document.GetPath(), reference::NeedsStaging(bytes, false) ? folder.File("f.xml.2Dos") : file);
    ASSERT_EQ(document.SaveXml(file), 0);
    ASSERT_TRUE(support::BytesOf(file) == reference::WriteXml(expected)) << i << ": " << Legible(documents[i]);
  }
}

TEST(AgainstReference, Staging) {
  const TemporaryFiles folder;
  ForEach({"line ends", {"\r", "\n", "x", kNul}, 4, "%"}, 4, "", [&](const std::string& bytes) {
    const std::string file = folder.Write("s.xml", bytes);
    for (const bool scan_all : {false, true}) {
      EXPECT_EQ(pktaus::NeedsStaging(file, scan_all), reference::NeedsStaging(bytes, scan_all)) << Legible(bytes);
    }
    ASSERT_EQ(pktaus::StageFile(file), folder.File("s.xml.2Dos"));
    EXPECT_EQ(support::BytesOf(folder.File("s.xml.2Dos")), reference::Staged(bytes)) << Legible(bytes);
  });
}

TEST(AgainstReference, SmallIniWorlds) {
  CheckWorlds(
      {
          {"lines", {"[", "]", "a", "=", "\n", "#", "'", "\""}, 5, "%"},
          {"lines of a section", {"[", "]", "a", "=", "\r\n", "#", "'", "\"", kNul}, 5, "[s]x\n%"},
          {"values", {"'", "\"", "#", "a", " ", "\t", "\r", "\xE4"}, 5, "[s]\nk=%\n%=v"},
          {"quoted values", {"'", "\"", "#", "=", " "}, 6, "[s]\nz\xFC = %"},
      },
      &Oracle::Ini);
}

// Lines come in pieces of 999 bytes within a section and of 1999 bytes outside of one.
TEST(AgainstReference, LongIniLines) {
  Oracle oracle;
  for (const char* frame :
       {"[s]\n%=v\nb=c", "[s]\na=%=c\nb=c", "[s]\na=%[t]\nb=c", "[%s]\nb=c", "x%[s]\nb=c", "x%\n[s]\nb=c"}) {
    for (std::size_t size = 1; size<4100; size += size % 1000> 985 || size % 1000 < 15 ? 1 : 13) {
      ForEach({"", {}, 0, frame}, 0, std::string(size, 'k'), [&](const std::string& bytes) { oracle.Ini(bytes); });
    }
  }
}

TEST(AgainstReference, NameIds) {
  CTreeDocument document;
  std::map<int, std::vector<std::string>> chains;
  std::mt19937 random(7);
  for (int i = 0; i < 40000; ++i) {
    std::string name(random() % 8 == 0 ? random() % 1004 : random() % 4, '\0');
    for (char& c : name) c = static_cast<char>(1 + random() % 127);
    auto& chain = chains[reference::Bucket(name)];
    const auto position = std::find(chain.begin(), chain.end(), name) - chain.begin();
    if (position == std::ssize(chain)) chain.push_back(name);
    const pktaus::NameId id = document.Intern(name);
    ASSERT_EQ(id, position * 65536 + reference::Bucket(name)) << Legible(name);
    ASSERT_EQ(document.NameOf(id), name);
  }
}

}  // namespace
