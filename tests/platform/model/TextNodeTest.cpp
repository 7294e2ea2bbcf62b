#include "document/kdzero/TextNode.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

#include "document/kdzero/PlainTextNode.hpp"

namespace {

using document::kdzero::PlainTextNode;

class TextNode : public testing::Test {
 protected:
  kd::zero::Model model = kd::zero::Model::create();
  PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});

  PlainTextNode makeWith(const std::u16string& text) const {
    PlainTextNode made = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
    made->setText(text);
    return made;
  }
};

TEST_F(TextNode, IsEmptyAtFirst) {
  EXPECT_EQ(node->getText(), u"");
  node->setText(u"");
  EXPECT_EQ(node->getText(), u"");
}

TEST_F(TextNode, KeepsACopyOfItsText) {
  std::u16string text = u"x = 1";
  node->setText(text);
  text = u"y = 2";
  EXPECT_EQ(node->getText(), u"x = 1");
}

TEST_F(TextNode, KeepsTextsOfEveryLength) {
  for (std::size_t length = 0; length < 600; ++length) {
    std::u16string text(length, u'a');
    if (length > 0) text.back() = u'z';
    node->setText(text);
    ASSERT_EQ(node->getText(), text);
    const PlainTextNode other =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{});
    other->setText(text);
    ASSERT_EQ(other->getText(), text);
  }
}

TEST_F(TextNode, ShrinksAndGrows) {
  node->setText(std::u16string(1000, u'a'));
  node->setText(u"short");
  EXPECT_EQ(node->getText(), u"short");
  node->setText(std::u16string(1000, u'b'));
  EXPECT_EQ(node->getText(), std::u16string(1000, u'b'));
  node->setText(std::u16string(100000, u'c'));
  EXPECT_EQ(node->getText(), std::u16string(100000, u'c'));
  node->setText(u"");
  EXPECT_EQ(node->getText(), u"");
}

TEST_F(TextNode, TakesAPartOfItsOwnText) {
  node->setText(u"one two three");
  node->setText(node->getText());
  EXPECT_EQ(node->getText(), u"one two three");
  node->setText(node->getText().substr(4));
  EXPECT_EQ(node->getText(), u"two three");
  node->setText(node->getText().substr(0, 3));
  EXPECT_EQ(node->getText(), u"two");
}

TEST_F(TextNode, KeepsEveryCodeUnit) {
  const std::u16string text{u'\0', u'\xD800', u'\xFFFF', u'\n', u'\xDC00', u'\0'};
  node->setText(text);
  EXPECT_EQ(node->getText(), text);
}

TEST_F(TextNode, RefusesATextThatIsTooLongAndKeepsTheOld) {
  node->setText(u"old");
  const char16_t unit = u'a';
  // Its length is refused before it is read.
  const std::u16string_view tooLong(&unit, std::size_t{1} << 32);
  EXPECT_THROW(node->setText(tooLong), std::length_error);
  EXPECT_EQ(node->getText(), u"old");
}

// A text that is set directly after its node was made is stored in the node's block.

TEST_F(TextNode, FirstTextOfEveryLengthLeavesTheNextNodeAlone) {
  for (std::size_t length = 0; length < 600; ++length) {
    std::u16string text(length, u'a');
    for (std::size_t at = 0; at < length; ++at) text[at] = static_cast<char16_t>(u'A' + at);
    const PlainTextNode first = makeWith(text);
    const PlainTextNode next = makeWith(u"next");
    ASSERT_EQ(first->getText(), text);
    ASSERT_EQ(next->getText(), u"next");
    first->setText(text + u"longer by more than a granule");
    ASSERT_EQ(first->getText(), text + u"longer by more than a granule");
    first->setText(u"b");
    ASSERT_EQ(first->getText(), u"b");
    ASSERT_EQ(next->getText(), u"next");
  }
}

TEST_F(TextNode, FirstTextIsStoredDirectlyAfterTheNode) {
  const PlainTextNode made = makeWith(u"twelve units");
  EXPECT_EQ(static_cast<const void*>(made->getText().data()),
            static_cast<const void*>(made.get() + 1));
}

TEST_F(TextNode, FirstTextIsStoredApartWhenAnotherElementWasMadeBetween) {
  const PlainTextNode made = PlainTextNode::Builder(model).createPlainTextNode({});
  PlainTextNode next = makeWith(u"next");
  made->setText(u"a text that needs a block of its own");
  EXPECT_EQ(made->getText(), u"a text that needs a block of its own");
  EXPECT_EQ(next->getText(), u"next");
  next = PlainTextNode();
  EXPECT_EQ(made->getText(), u"a text that needs a block of its own");
}

TEST_F(TextNode, FirstTextThatIsEmptyDoesNotEnlargeTheBlock) {
  const PlainTextNode empty = makeWith(u"");
  PlainTextNode next = makeWith(u"");
  const void* place = next.get();
  EXPECT_EQ(place, static_cast<const void*>(empty.get() + 1));
  empty->setText(u"a text that needs a block of its own");
  // The next node is still destroyed with its last handle, and its block used again.
  next = PlainTextNode();
  next = makeWith(u"again!");
  EXPECT_EQ(static_cast<const void*>(next.get()), place);
  EXPECT_EQ(empty->getText(), u"a text that needs a block of its own");
}

TEST_F(TextNode, SecondTextUsesTheSpaceOfTheFirst) {
  const PlainTextNode made = makeWith(u"twelve units");
  const void* place = made->getText().data();
  made->setText(u"eleven unit");
  EXPECT_EQ(made->getText().data(), place);
  EXPECT_EQ(made->getText(), u"eleven unit");
}

TEST_F(TextNode, ReturnsItsWholeBlockWithTheTextInIt) {
  const void* place = nullptr;
  std::size_t sizeBytes = 0;
  {
    const PlainTextNode made = makeWith(u"twelve units");
    place = made.get();
    sizeBytes = sizeof(PlainTextNode::Impl) + made->getText().size() * sizeof(char16_t);
  }
  EXPECT_EQ(model.storage().allocate(sizeBytes), place);
}

TEST_F(TextNode, ReturnsALongTextThatItTookLater) {
  const void* place = nullptr;
  {
    const PlainTextNode made = makeWith(u"short");
    made->setText(std::u16string(100, u'a'));
    place = made->getText().data();
  }
  node->setText(std::u16string(100, u'b'));
  EXPECT_EQ(node->getText().data(), place);
}

}  // namespace
