#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bundle/MarkupBundleFixture.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "tessera/pieces/ControlNode.hpp"
#include "tessera/pieces/OutputNode.hpp"

namespace {

using document::kdzero::Node;
using document::kdzero::TesseraDocument;
using document::kdzero::TextNode;
using tessera::pieces::PieceNode;
using testing::ElementsAre;

/// Starts the bundle for pieces in addition to the parsers' bundle.
class PieceBundle : public MarkupBundle {
 protected:
  void startPieces() {
    pieces = install(PIECES);
    pieces.Start();
  }

  /// Parses one line of code and returns its node.
  Node parse(const std::u16string& text) {
    parser(kDefault)->parse(document, {text, {}, text});
    return document->getChildAt(document->getNumberOfChildren() - 1);
  }

  static std::string describe(const Node& child) {
    const auto& metaClass = child->getMetaClass();
    std::string text = fl::i18n::ustring_to_utf8(metaClass.getName()) + " '" +
                       fl::i18n::ustring_to_utf8(TextNode::castFrom(child)->getText()) + "'";
    if (const PieceNode piece = PieceNode::castFrom(child)) {
      const auto [begin, end] = piece->getRange();
      text += " #" + fl::i18n::ustring_to_utf8(piece->getId()) + " [" + std::to_string(begin) +
              "," + std::to_string(end) + "]";
    }
    return text;
  }

  /// Returns the children of the node of one line of code.
  std::vector<std::string> childrenOf(const std::u16string& text) {
    std::vector<std::string> found;
    for (const Node& child : parse(text)->getChildren()) found.push_back(describe(child));
    return found;
  }

  std::shared_ptr<TesseraDocument> document = std::make_shared<TesseraDocument>();
  cppmicroservices::Bundle pieces;
};

TEST_F(PieceBundle, WithoutItPiecesAreDropped) {
  EXPECT_THAT(childrenOf(u"a + b # <@output#o [0,1]> # <@control#c [4,5]>"),
              ElementsAre("PlainTextNode ' + b  # <@control#c [4,5]>'"));
}

TEST_F(PieceBundle, EachPieceOfALineIsANodeInItsPlace) {
  startPieces();
  EXPECT_THAT(childrenOf(u"a + b # <@output#o [0,1]> # <@control#c [4,5]> end"),
              ElementsAre("OutputNode 'a' #o [0,1]", "PlainTextNode ' + '",
                          "ControlNode 'b' #c [4,5]", "PlainTextNode '   end'"));
}

TEST_F(PieceBundle, APieceInsideAnotherOneDividesIt) {
  startPieces();
  EXPECT_THAT(childrenOf(u"abcde # <@control#c [0,5]> # <@output#o [2,3]>"),
              ElementsAre("ControlNode 'ab' #c [0,5]", "OutputNode 'c' #o [2,3]",
                          "ControlNode 'de' #c [0,5]", "PlainTextNode '  '"));
}

TEST_F(PieceBundle, TheLaterMarkerOwnsTextThatTwoRangesCover) {
  startPieces();
  EXPECT_THAT(
      childrenOf(u"abcde # <@output#o [0,4]> # <@output#p [2,5]>"),
      ElementsAre("OutputNode 'ab' #o [0,4]", "OutputNode 'cde' #p [2,5]", "PlainTextNode '  '"));
  EXPECT_THAT(childrenOf(u"abcde # <@output#o [2,3]> # <@control#c [0,5]>"),
              ElementsAre("ControlNode 'abcde' #c [0,5]", "PlainTextNode '  '"));
}

TEST_F(PieceBundle, AMarkerWithoutARangeHasNoPiece) {
  startPieces();
  EXPECT_THAT(childrenOf(u"x # <@output#o>"), ElementsAre("PlainTextNode 'x '"));
  EXPECT_THAT(childrenOf(u"# <@control#c>"), ElementsAre("PlainTextNode ''"));
}

TEST_F(PieceBundle, AnUnusableRangeIsAFailureOfControlsToo) {
  startPieces();
  const Node line = parse(u"x = 1 # <@control#c [5,4]>");
  ASSERT_EQ(line->getParserFailures().size(), 1U);
  EXPECT_EQ(line->getParserFailures()[0].getFailureId(), u"invalid_position_data");
  EXPECT_EQ(line->getChildren().size(), 1U);
}

TEST_F(PieceBundle, AnotherBundleTakesPrecedence) {
  startPieces();
  install(OUTPUT_TEXT).Start();
  EXPECT_THAT(childrenOf(u"ab # <@output#o [0,1]> # <@control#c [1,2]>"),
              ElementsAre("PlainTextNode 'a'", "ControlNode 'b' #c [1,2]", "PlainTextNode '  '"));
}

TEST_F(PieceBundle, AnotherBundleThatWasStartedFirstTakesPrecedence) {
  install(OUTPUT_TEXT).Start();
  startPieces();
  EXPECT_THAT(childrenOf(u"ab # <@output#o [0,1]> # <@control#c [1,2]>"),
              ElementsAre("PlainTextNode 'a'", "ControlNode 'b' #c [1,2]", "PlainTextNode '  '"));
}

TEST_F(PieceBundle, NodesOutliveTheBundle) {
  startPieces();
  const Node line = parse(u"a # <@output:type#o [0,1] {\"k\":1}>");
  pieces.Stop();
  pieces.Uninstall();
  const auto output = tessera::pieces::OutputNode::castFrom(line->getChildren()[0]);
  ASSERT_TRUE(output);
  EXPECT_EQ(output->getType(), u"type");
  EXPECT_EQ(output->getData().count("k"), 1U);
  EXPECT_TRUE(document->getModel().verify());
}

}  // namespace
