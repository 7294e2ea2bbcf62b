#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "platform/model/Box.hpp"
#include "support/nilUuid.hpp"

namespace {

using document::kdzero::LineNode;
using document::kdzero::PlainTextNode;
using kd::zero::Model;
using kd::zero::ModelStorage;
using quenlith::test::Box;
using quenlith::test::kNil;
using quenlith::test::makeBox;

TEST(ModelStorage, GivesEveryBlockRoomOfItsOwn) {
  const Model model = Model::create();
  ModelStorage& storage = model.storage();
  std::map<unsigned char*, std::size_t> blocks;
  for (int round = 0; round < 20; ++round) {
    for (std::size_t size = 1; size <= ModelStorage::kLargestBlock + 20; size += 7) {
      auto* block = static_cast<unsigned char*>(storage.allocate(size));
      ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0u);
      std::memset(block, static_cast<int>(size % 251), size);
      ASSERT_TRUE(blocks.emplace(block, size).second);
    }
  }
  for (const auto& [block, size] : blocks) {
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(block[i], size % 251);
    storage.deallocate(block, size);
  }
}

TEST(ModelStorage, UsesRoomAgainThatWasGivenBack) {
  const Model model = Model::create();
  ModelStorage& storage = model.storage();
  void* first = storage.allocate(40);
  void* second = storage.allocate(40);
  storage.deallocate(first, 40);
  storage.deallocate(second, 40);
  const std::set<void*> given{first, second};
  EXPECT_EQ(given, (std::set<void*>{storage.allocate(33), storage.allocate(40)}));
  EXPECT_EQ(given.count(storage.allocate(40)), 0u);
}

TEST(ModelStorage, IsFoundFromEveryElementOfIt) {
  const Model model = Model::create();
  const Model other = Model::create();
  std::vector<Box> boxes;
  for (int i = 0; i < 2000; ++i) {
    boxes.push_back(makeBox(i % 2 == 0 ? model : other));
    ASSERT_EQ(&ModelStorage::of(boxes.back().get()), &(i % 2 == 0 ? model : other).storage());
  }
}

TEST(ModelStorage, AnElementStandsWhereOneEndedBefore) {
  const Model model = Model::create();
  LineNode line = LineNode::Builder(model).createLineNode(kNil);
  const void* place = line.get();
  line->setAnchorId(u"gone");
  line = LineNode();
  line = LineNode::Builder(model).createLineNode(kNil);
  EXPECT_EQ(line.get(), place);
  EXPECT_EQ(line->getAnchorId(), u"");
  EXPECT_TRUE(line->getChildren().empty());
}

TEST(ModelStorage, TextsUseTheRoomOfTextsBefore) {
  const Model model = Model::create();
  const PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(kNil);
  const PlainTextNode other = PlainTextNode::Builder(model).createPlainTextNode(kNil);
  const PlainTextNode last = PlainTextNode::Builder(model).createPlainTextNode(kNil);
  // Only the text of the node made last is stored in the node's own block.
  node->setText(u"twelve units");
  const void* place = node->getText().data();
  node->setText(u"a text that needs more room");
  other->setText(u"twelve too..");
  EXPECT_EQ(other->getText().data(), place);
  EXPECT_EQ(node->getText(), u"a text that needs more room");
}

TEST(ModelStorage, LargeTextsAndCollectionsStandApart) {
  const Model model = Model::create();
  const LineNode line = LineNode::Builder(model).createLineNode(kNil);
  for (int i = 0; i < 3000; ++i) {
    const PlainTextNode node = PlainTextNode::Builder(model).createPlainTextNode(kNil);
    node->setText(std::u16string(static_cast<std::size_t>(i), u'x'));
    line->getChildrenMutable().add(node);
  }
  std::size_t units = 0;
  for (const auto& child : line->getChildren()) {
    units += PlainTextNode::castFrom(child)->getText().size();
  }
  EXPECT_EQ(units, 3000u * 2999u / 2);
}

// Release.

TEST(Release, OfADeepTreeDoesNotRecurse) {
  constexpr int kDepth = 100000;
  const Model model = Model::create();
  LineNode root = LineNode::Builder(model).createLineNode(kNil);
  {
    LineNode inner = root;
    for (int i = 0; i < kDepth; ++i) {
      LineNode next = LineNode::Builder(model).createLineNode(kNil);
      next->setAnchorId(u"anchor");
      inner->getChildrenMutable().add(next);
      inner = next;
    }
  }
  root = LineNode();
  Box box = makeBox(model);
  for (int i = 0; i < kDepth; ++i) {
    const Box outer = makeBox(model);
    outer->distinct.add(box);
    box = outer;
  }
  EXPECT_EQ(quenlith::test::liveBoxes(), kDepth + 1);
  box = Box();
  EXPECT_EQ(quenlith::test::liveBoxes(), 0);
}

TEST(Release, OfALargeDocumentLeavesWhatAHandleRefersTo) {
  constexpr std::uint64_t kLines = 500000;
  PlainTextNode kept;
  {
    document::kdzero::TesseraDocument document;
    const Model model = document.getModel();
    for (std::uint64_t i = 0; i < kLines; ++i) {
      const LineNode line = LineNode::Builder(model).createLineNode(kNil);
      const PlainTextNode text = PlainTextNode::Builder(model).createPlainTextNode(kNil);
      text->setText(u"text of a line");
      line->getChildrenMutable().add(text);
      document.addChild(line);
      if (i == kLines / 2) kept = text;
    }
    EXPECT_EQ(document.getNumberOfChildren(), kLines);
    EXPECT_EQ(kept->getParent(), document.getChildAt(kLines / 2));
  }
  EXPECT_EQ(kept->getText(), u"text of a line");
  EXPECT_FALSE(kept->getParent());
}

TEST(Release, OfAnElementThatStandsInManyPlaces) {
  const Model model = Model::create();
  Box shared = makeBox(model);
  {
    const Box owner = makeBox(model);
    for (int i = 0; i < 10; ++i) owner->anything.add(shared);
    owner->distinct.add(shared);
    owner->parts.add(shared);
    shared = Box();
    EXPECT_EQ(quenlith::test::liveBoxes(), 2);
  }
  EXPECT_EQ(quenlith::test::liveBoxes(), 0);
}

}  // namespace
