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

TEST_F(TextNode, IsMadeWithTextsOfEveryLength) {
  for (std::size_t length = 0; length < 600; ++length) {
    std::u16string text(length, u'a');
    for (std::size_t at = 0; at < length; ++at) text[at] = static_cast<char16_t>(u'A' + at);
    const PlainTextNode made =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, text);
    const PlainTextNode next =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"next");
    ASSERT_EQ(made->getText(), text);
    ASSERT_EQ(next->getText(), u"next");
    made->setText(text + u"longer by more than a granule");
    ASSERT_EQ(made->getText(), text + u"longer by more than a granule");
    made->setText(u"b");
    ASSERT_EQ(made->getText(), u"b");
    ASSERT_EQ(next->getText(), u"next");
  }
}

TEST_F(TextNode, MadeWithAnEmptyTextHasNoRoomToGiveBack) {
  const auto make = [this](std::u16string_view text) {
    return PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, text);
  };
  const PlainTextNode empty = make(u"");
  PlainTextNode behind = make(u"behind");
  const void* place = behind.get();
  empty->setText(u"a text that needs a block of its own");
  EXPECT_EQ(behind->getText(), u"behind");
  // The one behind still ends with its last handle.
  behind = PlainTextNode();
  behind = make(u"again!");
  EXPECT_EQ(static_cast<const void*>(behind.get()), place);
}

TEST_F(TextNode, MadeWithItsTextTakesAnotherOneIntoItsRoom) {
  const PlainTextNode made =
      PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"twelve units");
  const void* place = made->getText().data();
  made->setText(u"eleven unit");
  EXPECT_EQ(made->getText().data(), place);
  EXPECT_EQ(made->getText(), u"eleven unit");
}

TEST_F(TextNode, MadeWithItsTextGivesBackItsWholeBlock) {
  const void* place = nullptr;
  {
    const PlainTextNode made =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"twelve units");
    place = made.get();
  }
  const PlainTextNode shorter =
      PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"a");
  EXPECT_NE(static_cast<const void*>(shorter.get()), place);
  const PlainTextNode same =
      PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"twelve again");
  EXPECT_EQ(static_cast<const void*>(same.get()), place);
}

TEST_F(TextNode, GivesBackALongTextThatItTookLater) {
  const void* place = nullptr;
  {
    const PlainTextNode made =
        PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid{}, u"short");
    made->setText(std::u16string(100, u'a'));
    place = made->getText().data();
  }
  node->setText(std::u16string(100, u'b'));
  EXPECT_EQ(node->getText().data(), place);
}

}  // namespace
