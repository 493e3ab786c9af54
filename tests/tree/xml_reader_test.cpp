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
      {"self-closed with attribute", "<a b=\"c\"/>", "a[b=c]"},
      {"empty", "<a></a>", "a"},
      {"value is trimmed, inner blanks stay", "<a> \t\r\v\f te  xt\n </a>", "a\"te  xt\""},
      {"value behind children", "<a><b/>tail</a>", "a\"tail\"(b)"},
      {"quoted and unquoted attributes", "<a b=\"x y\" c=z></a>", "a[b=x y c=z]"},
      {"two blanks make an empty name", "<a  b=c></a>", "a[= b=c]"},
      {"single quotes are ordinary", "<a b='c'></a>", "a[b='c']"},
      {"/ outside quotes", "<a b=c/d e=f//>", "a[b=c/d e=f/]"},
      {"/ in a name is dropped", "<a/b></ab>", "ab"},
      {"umlauts in values alone", "<a b=\"\xC3\xA4\">\xC3\x84\xC3\x96\xC3\x9C\xC3\x9F\xC3\xA4\xC3\xB6\xC3\xBC</a>",
       "a[b=\xC3\xA4]\"\xC4\xD6\xDC\xDF\xE4\xF6\xFC\""},
      {"other letters stay", "<a>\xC3\xA9\xC3\xC3\xA4\xE4\xC3</a>", "a\"\xC3\xA9\xC3\xC3\xA4\xE4\xC3\""},
      {"comment keeps its blanks", "<a><!-- a-b/c --></a>", "a(!--\" a-b/c \")"},
      {"comment ends at />", "<a><!-- <b/><c/>--></a>", "a\"-->\"(!--\" <b\" c)"},
      {"marked section", "<a><![CDATA[a<b>]]></a>", "a(![\"CDATA[a<b>]\")"},
      {"section ends where brackets balance", "<a><![CDATA[a]b]]></a>", "a\">\"(![\"CDATA[a]b\")"},
      {"other markup keeps blanks at the value's end", "<a><!b> x </b></a>", "a(!b\"x \")"},
      {"bang in a markup's name", "<a><!!/></a>", "-"},
      {"comments in front of the root go", "<?xml?><!-- a --><!-- b --><a/>", "a"},
      {"DOCTYPE goes", "<?xml?>\n<!DOCTYPE a b>\n<a><b></b></a>", "a(b)"},
      {"high bytes in front of the root go", "<?xml?>\xEF\xBB\xBF<a/>", "a"},
      {"second header", "<?xml?><?xml?><a/>", "-"},
      {"responsible party inside goes",
       "<a><gmd:CI_ResponsibleParty><b/></gmd:CI_ResponsibleParty><c/>"
       "<gmd:CI_ResponsibleParty/></a>",
       "a(c)"},
      {"responsible party as root stays", "<gmd:CI_ResponsibleParty/>", "gmd:CI_ResponsibleParty"},
      {"no closing tag", "<a><b></b>", "-"},
      {"blank in a closing tag", "<a></a >", "-"},
      {"unclosed child is dropped up to the next /", "<a><b></a>", "a"},
      {"text in front of a child", "<a>x<b></b></a>", "-"},
      {"attributes of a failed tag are nobody's", "<r><q><a x b=\"</q><c></c></r>", "r(q c)"},
      {"text behind the root", "<a/><b/>", "a"},
      {"nothing", "", "-"},
  };
  for (const auto& c : kCases) {
    const auto document = ReadXmlText(c.xml);
    EXPECT_EQ(TreeText(document->GetRoot()), c.tree) << c.what;
  }
}

}  // namespace
