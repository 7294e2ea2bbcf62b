#include <gtest/gtest.h>

#include "conformance/ParserHost.hpp"
#include "oracle/support/readDocument.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"

namespace quenlith::conformance {
namespace {

using build::markup::code::CodeElement;
using build::markup::code::PlainTextNodeParserImpl;

TEST(PlainTextParserRules, EveryMarkerIsAccepted) {
  PlainTextNodeParserImpl parser;
  for (const auto* text : {u"control", u"output", u"task", u"text", u"%<@text:anchor#a>",
                           u"%<@other:type#a {\"b\":1}>", u"no marker"}) {
    EXPECT_TRUE(parser.canParse(Marker(text)));
  }
}

TEST(PlainTextParserRules, EmptyTextGivesANodeOfEmptyText) {
  ParserHost host;
  PlainTextNodeParserImpl parser;
  const auto node = parser.parse(host.document->getModel(), {});
  EXPECT_EQ(oracle::readNode(node), NodeRecord::plainText(u""));
}

TEST(PlainTextParserRules, MarkerAndRangeChangeNothing) {
  ParserHost host;
  PlainTextNodeParserImpl parser;
  CodeElement bare;
  bare.text = u"a \u00e9\xD800";
  CodeElement owned = bare;
  owned.marker = Marker(u"%<@output#o>");
  owned.range = {1, 3};
  const auto model = host.document->getModel();
  EXPECT_EQ(oracle::readNode(parser.parse(model, owned)), NodeRecord::plainText(bare.text));
  EXPECT_EQ(oracle::readNode(parser.parse(model, bare)), NodeRecord::plainText(bare.text));
}

TEST(PlainTextParserRules, EveryNodeHasTheNilUuid) {
  ParserHost host;
  PlainTextNodeParserImpl parser;
  const auto first = parser.parse(host.document->getModel(), {});
  const auto second = parser.parse(host.document->getModel(), {});
  EXPECT_TRUE(first->getUuid().is_nil());
  EXPECT_TRUE(second->getUuid().is_nil());
  EXPECT_FALSE(first == second);
}

}  // namespace
}  // namespace quenlith::conformance
