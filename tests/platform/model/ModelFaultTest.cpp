#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "support/FailingAllocations.hpp"
#include "support/nilUuid.hpp"

namespace {

using contributors::kdzero::LineData;
using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::MarkerInfo;
using failures::kdzero::ParserFailure;
using foundation::json::Value;
using kd::zero::Model;
using quenlith::test::failEachAllocation;
using quenlith::test::FailingAllocations;
using quenlith::test::kNil;
using quenlith::test::liveAllocations;
using tessera::contentmodel::kdzero::LiveTaskData;

constexpr boost::uuids::uuid kSome{{1}};
// Too long for the small-string buffer.
const std::u16string kLong(300, u'x');
constexpr int kManyElements = 100;

/// Uses up the room that the model has left, so that the next element needs a new chunk.
void exhaust(const Model& model) {
  const FailingAllocations all(0);
  try {
    for (;;) model.storage().allocate(8);
  } catch (const std::bad_alloc&) {
  }
}

/// Tests with a document; at the end everything that was allocated has been released.
class ModelFault : public testing::Test {
 protected:
  void SetUp() override {
    { const TesseraDocument warmUp; }
    liveBefore = liveAllocations();
    document.emplace();
    model = document->getModel();
  }
  void TearDown() override {
    document.reset();
    model = Model();
    EXPECT_EQ(liveAllocations(), liveBefore);
  }

  LineNode makeLine() const { return LineNode::Builder(model).createLineNode(kNil); }
  PlainTextNode makeText() const { return PlainTextNode::Builder(model).createPlainTextNode(kNil); }

  std::ptrdiff_t liveBefore = 0;
  std::optional<TesseraDocument> document;
  Model model;
};

// More nodes than fit into one chunk of the model, one after the other.
TEST_F(ModelFault, ANodeLeavesTheRoomOfAllItsPartsToTheNextOne) {
  const auto useLine = [this] {
    const LineNode line = makeLine();
    line->setAnchorId(u"a");
    line->getChildrenMutable().add(makeText());
  };
  useLine();
  const std::ptrdiff_t live = liveAllocations();
  for (int i = 0; i < 20'000; ++i) useLine();
  EXPECT_EQ(liveAllocations(), live);
}

TEST_F(ModelFault, ADocumentThatCannotBeMadeLeavesNothing) {
  const std::size_t failed = failEachAllocation([] { const TesseraDocument another; }, [] {});
  EXPECT_GT(failed, 0u);
}

TEST_F(ModelFault, AnElementThatCannotBeMadeLeavesTheModelAsItWas) {
  std::size_t failed = 0;
  std::vector<LineNode> lines(6);
  for (std::size_t i = 0; i < lines.size(); i += 2) {
    exhaust(model);
    failed += failEachAllocation([&] { lines[i] = makeLine(); }, [] {});
    exhaust(model);
    failed +=
        failEachAllocation([&] { lines[i + 1] = LineNode::Builder(model).createLineNode(kSome); },
                           [&] { ASSERT_FALSE(lines[i + 1]); });
    ASSERT_EQ(lines[i + 1]->getUuid(), kSome);
  }
  EXPECT_GE(failed, lines.size());
}

TEST_F(ModelFault, ANodeWhoseIdentifierCannotBeStoredIsGivenUp) {
  // Room for the node, but none for the part with its identifier: no chunk can be had.
  exhaust(model);
  const void* room = nullptr;
  {
    LineNode line = makeLine();
    room = line.get();
  }
  exhaust(model);
  {
    const FailingAllocations all(0);
    // What the first node left is free, and enough for this one.
    EXPECT_THROW(LineNode::Builder(model).createLineNode(kSome), std::bad_alloc);
  }
  EXPECT_EQ(makeLine().get(), room);
}

TEST_F(ModelFault, ATopLevelNodeIsAddedOrNot) {
  std::size_t failed = 0;
  for (std::uint64_t i = 0; i < kManyElements; ++i) {
    const LineNode line = makeLine();
    exhaust(model);
    failed += failEachAllocation([&] { document->addChild(line); },
                                 [&] {
                                   ASSERT_EQ(document->getNumberOfChildren(), i);
                                   ASSERT_FALSE(line->getContainer());
                                 });
    ASSERT_EQ(document->getNumberOfChildren(), i + 1);
    ASSERT_EQ(document->getChildAt(i), line);
  }
  EXPECT_GT(failed, 5u);
}

TEST_F(ModelFault, AChildIsAddedOrNot) {
  const LineNode parent = makeLine();
  const LineNode former = makeLine();
  std::vector<Node> children;
  std::size_t failed = 0;
  for (int i = 0; i < kManyElements; ++i) {
    const PlainTextNode child = makeText();
    former->getChildrenMutable().add(child);
    exhaust(model);
    failed += failEachAllocation(
        [&] { parent->getChildrenMutable().add(child); },
        [&] {
          ASSERT_EQ(std::vector<Node>(parent->getChildren().begin(), parent->getChildren().end()),
                    children);
          ASSERT_EQ(child->getParent(), former);
          ASSERT_EQ(former->getChildren().size(), 1u);
        });
    children.emplace_back(child);
    ASSERT_EQ(child->getParent(), parent);
    ASSERT_TRUE(former->getChildren().empty());
  }
  EXPECT_EQ(parent->getChildren().size(), children.size());
  EXPECT_GT(failed, 5u);
}

TEST_F(ModelFault, ContributorDataIsAddedOrNot) {
  const LineNode line = makeLine();
  std::size_t failed = 0;
  for (std::size_t i = 0; i < kManyElements; ++i) {
    const NodeContributorData data =
        NodeContributorData::Builder(model).createNodeContributorData(kNil);
    exhaust(model);
    failed += failEachAllocation(
        [&] {
          line->getContributorDataMutable().add(data);
          line->getContributorDataMutable().add(data);
        },
        [&] {
          // The first of the two may have been added when the second one failed.
          const auto added = line->getContributorData();
          ASSERT_TRUE(added.size() == i || (added.size() == i + 1 && added.back() == data));
          ASSERT_EQ(bool(data->getContainer()), added.size() == i + 1);
        });
    ASSERT_EQ(line->getContributorData().size(), i + 1);
    ASSERT_EQ(line->getContributorData()[i], data);
  }
  EXPECT_GT(failed, 20u);
}

TEST_F(ModelFault, LineDataIsAddedOrNot) {
  const NodeContributorData data =
      NodeContributorData::Builder(model).createNodeContributorData(kNil);
  for (std::size_t i = 0; i < kManyElements; ++i) {
    const LineData lineData = LineData::Builder(model).createLineData(kNil);
    exhaust(model);
    failEachAllocation([&] { data->getLineDataListMutable().add(lineData); },
                       [&] { ASSERT_EQ(data->getLineDataList().size(), i); });
    ASSERT_EQ(data->getLineDataList().size(), i + 1);
  }
}

TEST_F(ModelFault, AFailureIsAddedOrNot) {
  const LineNode line = makeLine();
  std::size_t failed = 0;
  for (std::size_t i = 0; i < kManyElements; ++i) {
    const ParserFailure failure =
        ParserFailure()
            .setFailureId(kLong + static_cast<char16_t>(u'0' + i))
            .setMarkerInfo(MarkerInfo().setMarkerId(kLong).setFeatureId(kLong))
            .setFailureData({{std::string(100, 'k'), std::vector<Value>{Value(1.0), Value("x")}}});
    exhaust(model);
    failed += failEachAllocation([&] { line->getParserFailuresMutable().add(failure); },
                                 [&] {
                                   ASSERT_EQ(line->getParserFailures().size(), i);
                                   if (i > 0) {
                                     ASSERT_FALSE(line->getParserFailures()[i - 1] == failure);
                                   }
                                 });
    ASSERT_EQ(line->getParserFailures().size(), i + 1);
    ASSERT_EQ(line->getParserFailures()[i], failure);
    line->getParserFailuresMutable().add(failure);
    ASSERT_EQ(line->getParserFailures().size(), i + 1);
  }
  EXPECT_GT(failed, 5u * kManyElements);
}

TEST_F(ModelFault, AFailureIsToldAndAddedOrNot) {
  struct Keeper final : kd::zero::ChangeListener {
    void modifying(const kd::zero::AbstractOwnedCollection&,
                   std::unique_ptr<kd::zero::OCDChange> change) override {
      kept = std::move(change);
    }
    std::unique_ptr<kd::zero::OCDChange> kept;
  };
  Keeper keeper;
  const std::size_t failedToListen = failEachAllocation([&] { model.addListener(keeper); }, [] {});
  EXPECT_GT(failedToListen, 0u);
  const LineNode line = makeLine();
  for (std::size_t i = 0; i < 40; ++i) {
    const ParserFailure failure =
        ParserFailure().setFailureId(kLong + static_cast<char16_t>(u'0' + i));
    failEachAllocation([&] { line->getParserFailuresMutable().add(failure); },
                       [&] { ASSERT_EQ(line->getParserFailures().size(), i); });
    ASSERT_EQ(line->getParserFailures().size(), i + 1);
  }
  model.removeListener(keeper);
}

TEST_F(ModelFault, ATextIsSetOrStays) {
  const PlainTextNode node = makeText();
  std::u16string before;
  std::size_t failed = 0;
  for (const std::size_t length : {1U, 5U, 60U, 255U, 256U, 257U, 5000U, 3U, 6000U}) {
    const std::u16string text(length, static_cast<char16_t>(u'a' + length % 26));
    exhaust(model);
    failed += failEachAllocation([&] { node->setText(text); },
                                 [&] { ASSERT_EQ(node->getText(), before); });
    ASSERT_EQ(node->getText(), text);
    before = text;
  }
  EXPECT_GE(failed, 5u);
}

TEST_F(ModelFault, AnAnchorIsSetOrStays) {
  const LineNode line = makeLine();
  exhaust(model);
  std::size_t failed = failEachAllocation([&] { line->setAnchorId(kLong); },
                                          [&] { EXPECT_EQ(line->getAnchorId(), u""); });
  failed += failEachAllocation([&] { line->setAnchorId(kLong + kLong + kLong); },
                               [&] { EXPECT_EQ(line->getAnchorId(), kLong); });
  EXPECT_EQ(line->getAnchorId(), kLong + kLong + kLong);
  EXPECT_GE(failed, 3u);
}

TEST_F(ModelFault, TaskDataIsSetOrStays) {
  const LiveAppIntegratedInlineNode node =
      LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(kNil);
  LiveTaskData before;
  for (const char16_t digit : {u'1', u'2'}) {
    const std::u16string text = kLong + digit;
    LiveTaskData data;
    data.setTaskId(text).setText(text).setAppState(text).setView(text).setCollapsed(text);
    const std::size_t failed = failEachAllocation(
        [&] { node->setLiveTaskData(data); }, [&] { EXPECT_EQ(node->getLiveTaskData(), before); });
    EXPECT_EQ(failed, 5u);
    EXPECT_EQ(node->getLiveTaskData(), data);
    before = data;
  }
  EXPECT_GT(failEachAllocation([&] { node->setId(kLong); }, [&] { EXPECT_EQ(node->getId(), u""); }),
            0u);
}

}  // namespace
