#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "support/CountedWork.hpp"
#include "support/nilUuid.hpp"

namespace {

using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using kd::zero::Model;
using quenlith::test::countedWork;
using quenlith::test::kNil;

constexpr std::size_t kFew = 10000;
constexpr std::size_t kMany = 10 * kFew;

/// Returns the basic blocks that `fill(n)` runs.
template <typename Fill>
std::uint64_t workOf(const Fill& fill, std::size_t n) {
  const std::uint64_t before = countedWork();
  fill(n);
  return countedWork() - before;
}

/// Ten times as much costs ten times as much, and a little for what grows by steps.
template <typename Fill>
void expectLinear(const Fill& fill) {
  fill(1);
  const std::uint64_t few = workOf(fill, kFew);
  ASSERT_GT(few, kFew);
  EXPECT_LT(workOf(fill, kMany), 12 * few);
}

TEST(ModelCost, OfTopLevelNodesIsLinear) {
  expectLinear([](std::size_t n) {
    TesseraDocument document;
    const LineNode::Builder builder(document.getModel());
    for (std::size_t i = 0; i < n; ++i) document.addChild(builder.createLineNode(kNil));
    ASSERT_EQ(document.getNumberOfChildren(), n);
  });
}

TEST(ModelCost, OfChildrenIsLinear) {
  expectLinear([](std::size_t n) {
    const Model model = Model::create();
    const LineNode line = LineNode::Builder(model).createLineNode(kNil);
    const PlainTextNode::Builder builder(model);
    for (std::size_t i = 0; i < n; ++i) {
      const PlainTextNode text = builder.createPlainTextNode(kNil);
      text->setText(u"text");
      line->getChildrenMutable().add(text);
      line->getChildrenMutable().add(text);
    }
    ASSERT_EQ(line->getChildren().size(), n);
  });
}

TEST(ModelCost, OfContributorDataIsLinear) {
  expectLinear([](std::size_t n) {
    const Model model = Model::create();
    const LineNode line = LineNode::Builder(model).createLineNode(kNil);
    const NodeContributorData::Builder builder(model);
    for (std::size_t i = 0; i < n; ++i) {
      const NodeContributorData data = builder.createNodeContributorData(kNil);
      line->getContributorDataMutable().add(data);
      line->getContributorDataMutable().add(data);
    }
    ASSERT_EQ(line->getContributorData().size(), n);
  });
}

TEST(ModelCost, OfFailuresIsLinear) {
  expectLinear([](std::size_t n) {
    const LineNode line = LineNode::Builder(Model::create()).createLineNode(kNil);
    for (std::size_t i = 0; i < n; ++i) {
      const std::string text = std::to_string(i);
      const auto failure = ParserFailure().setFailureId(std::u16string(text.begin(), text.end()));
      line->getParserFailuresMutable().add(failure);
      line->getParserFailuresMutable().add(failure);
    }
    ASSERT_EQ(line->getParserFailures().size(), n);
  });
}

TEST(ModelCost, OfADeepTreeIsLinear) {
  expectLinear([](std::size_t n) {
    const Model model = Model::create();
    const LineNode::Builder builder(model);
    LineNode root = builder.createLineNode(kNil);
    LineNode inner = root;
    for (std::size_t i = 0; i < n; ++i) {
      LineNode next = builder.createLineNode(kNil);
      // A node with an anchor has parts but no children: appending it must not search for a cycle.
      next->setAnchorId(u"anchor");
      inner->getChildrenMutable().add(next);
      inner = next;
    }
    // And from the leaves upwards.
    LineNode top = builder.createLineNode(kNil);
    for (std::size_t i = 0; i < n; ++i) {
      LineNode next = builder.createLineNode(kNil);
      next->getChildrenMutable().add(top);
      top = next;
    }
  });
}

}  // namespace
