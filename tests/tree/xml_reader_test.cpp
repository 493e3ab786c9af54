#include <gtest/gtest.h>

#include <string>

#include "tests/tree/tree_text.h"

namespace {

using support::ReadXmlText;
using support::TreeText;

TEST(XmlReader, Trees) {
  const struct {
    const char* what;
    std::string xml;
    const char* tree;
  } kCases[] = {
      {"self-closed", "<a/>", "a"},
      {"self-closed with attribute", "<a b=\"c\"/>", "a[b=c]"},
      {"empty", "<a></a>", "a"},
      {"empty name", "<></>", ""},
      {"value is trimmed, inner blanks stay", "<a> \t\r\v\f te  xt\n </a>", "a\"te  xt\""},
      {"value behind children", "<a><b/>tail</a>", "a\"tail\"(b)"},
      {"quoted and unquoted attributes", "<a b=\"x y\" c=z></a>", "a[b=x y c=z]"},
      {"two blanks make an empty name", "<a  b=c></a>", "a[= b=c]"},
      {"single quotes are ordinary", "<a b='c'></a>", "a[b='c']"},
      {"blank behind =", "<a b= \"c\"></a>", "a[b= c=]"},
      {"name in quotes", "<a \"b c\"=d=e></a>", "a[b c=de]"},
      {"> and / inside quotes", "<a b=\"/>\" c=\"1/2\"/>", "a[b=/> c=1/2]"},
      {"/ outside quotes", "<a b=c/d e=f//>", "a[b=c/d e=f/]"},
      {"known attribute keeps its place", "<a b=1 c=2 b=3></a>", "a[b=3 c=2]"},
      {"line break in a tag", "<a\r\nb=c\r\n></a>", "a[b=c]"},
      {"/ in a name is dropped", "<a/b></ab>", "ab"},
      {"umlauts in values alone", "<a b=\"\xC3\xA4\">\xC3\x84\xC3\x96\xC3\x9C\xC3\x9F\xC3\xA4\xC3\xB6\xC3\xBC</a>",
       "a[b=\xC3\xA4]\"\xC4\xD6\xDC\xDF\xE4\xF6\xFC\""},
      {"other letters stay", "<a>\xC3\xA9\xC3\xC3\xA4\xE4\xC3</a>", "a\"\xC3\xA9\xC3\xC3\xA4\xE4\xC3\""},
      {"entities stay", "<a>&amp;&lt;</a>", "a\"&amp;&lt;\""},
      {"comment keeps its blanks", "<a><!-- a-b/c --></a>", "a(!--\" a-b/c \")"},
      {"comment ends at />", "<a><!-- <b/><c/>--></a>", "a\"-->\"(!--\" <b\" c)"},
      {"comment ends at ?>", "<a><!-- ?><c/></a>", "a(!--\" \" c)"},
      {"comment of dashes", "<a><!-----></a>", "a(!--\"-\")"},
      {"comment runs to the end", "<a><!--</a>", "-"},
      {"umlauts in comments", "<a><!--\xC3\xA4--></a>", "a(!--\"\xE4\")"},
      {"marked section", "<a><![CDATA[a<b>]]></a>", "a(![\"CDATA[a<b>]\")"},
      {"section ends where brackets balance", "<a><![CDATA[a]b]]></a>", "a\">\"(![\"CDATA[a]b\")"},
      {"section drops the byte behind it", "<a><![x]y</a>", "a(![\"x\")"},
      {"other markup is read like an element", "<a><!b c> d <e/> f </!b><!g> x </g></a>", "-"},
      {"other markup keeps blanks at the value's end", "<a><!b> x </b></a>", "a(!b\"x \")"},
      {"bang in a markup's name", "<a><!!/></a>", "-"},
      {"comments in front of the root go", "<?xml?><!-- a --><!-- b --><a/>", "a"},
      {"DOCTYPE goes", "<?xml?>\n<!DOCTYPE a b>\n<a><b></b></a>", "a(b)"},
      {"closing tag behind DOCTYPE goes", "<!DOCTYPE a></x><a/>", "a"},
      {"high bytes in front of the root go", "<?xml?>\xEF\xBB\xBF<a/>", "a"},
      {"byte order mark goes", "\xEF\xBB\xBF<?xml?><a/>", "a"},
      {"second header", "<?xml?><?xml?><a/>", "-"},
      {"instruction inside", "<a><?b?></a>", "a"},
      {"instruction with / inside", "<a><?b/?></a>", "-"},
      {"responsible party inside goes",
       "<a><gmd:CI_ResponsibleParty><b/></gmd:CI_ResponsibleParty><c/>"
       "<gmd:CI_ResponsibleParty/></a>",
       "a(c)"},
      {"responsible party as root stays", "<gmd:CI_ResponsibleParty/>", "gmd:CI_ResponsibleParty"},
      {"no closing tag", "<a><b></b>", "-"},
      {"wrong closing tag", "<a></b>", "-"},
      {"blank in a closing tag", "<a></a >", "-"},
      {"unclosed child is dropped up to the next /", "<a><b></a>", "a"},
      {"text in front of a child", "<a>x<b></b></a>", "-"},
      {"text in front of an unclosed child", "<a>x<b></a>", "a\"x\""},
      {"stream ends in a tag", "<a b", "-"},
      {"attributes of a failed tag are nobody's", "<r><q><a x b=\"</q><c></c></r>", "r(q c)"},
      {"text behind the root", "<a/><b/>", "a"},
      {"nothing", "", "-"},
      {"no <", "abc", "-"},
  };
  for (const auto& c : kCases) {
    const auto document = ReadXmlText(c.xml);
    EXPECT_EQ(TreeText(document->GetRoot()), c.tree) << c.what;
  }
}

TEST(XmlReader, Header) {
  const struct {
    const char* xml;
    const char* header;
  } kCases[] = {
      {"<?xml version=\"1.0\"?><a/>", "xml version=\"1.0\""},
      {"xx<? \xC3\xA4 ?><a/>", " \xE4 "},
      {"<?xml/><a/>", "xml"},
      {"<a/>", nullptr},
      {" ", nullptr},
  };
  for (const auto& c : kCases) {
    const auto document = ReadXmlText(c.xml);
    ASSERT_EQ(document->GetHeader() == nullptr, c.header == nullptr) << c.xml;
    if (c.header != nullptr) {
      EXPECT_EQ(document->GetHeader()->GetValue(), c.header);
    }
  }
}

}  // namespace
