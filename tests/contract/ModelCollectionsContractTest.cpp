#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "contributors/kdzero/LineData.hpp"
#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/Node.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "kd/zero/AbstractOwnedCollection.hpp"
#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/OCDChange.hpp"
#include "kd/zero/OCDChangeDescriptor.hpp"
#include "kd/zero/OCDChangeDescriptorOfPrimitiveSequence.hpp"
#include "kd/zero/OCDChangeOfPrimitiveContainer.hpp"
#include "kd/zero/OCDChangeOfPrimitiveSequence.hpp"
#include "kd/zero/PrimitiveSequence.hpp"
#include "kd/zero/ReferenceCollection.hpp"
#include "kd/zero/meta/Property.hpp"
#include "support/nilUuid.hpp"

namespace {

using contributors::kdzero::LineData;
using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using kd::zero::AbstractOwnedCollection;
using kd::zero::ElementSequence;
using kd::zero::Model;
using kd::zero::ModelElement;
using kd::zero::OCDChange;
using kd::zero::PrimitiveSequence;
using kd::zero::ReferenceCollection;
using quenlith::test::kNil;
using FailureChange = kd::zero::OCDChangeOfPrimitiveSequence<ParserFailure>;
using FailureDescriptor = kd::zero::OCDChangeDescriptorOfPrimitiveSequence<ParserFailure>;

static_assert(std::is_base_of_v<AbstractOwnedCollection, ElementSequence<Node>>);
static_assert(std::is_base_of_v<AbstractOwnedCollection, PrimitiveSequence<ParserFailure>>);
static_assert(std::is_base_of_v<ReferenceCollection, ElementSequence<Node>>);
static_assert(std::is_base_of_v<kd::zero::OCDChangeDescriptor, FailureDescriptor>);
static_assert(
    std::is_base_of_v<kd::zero::OCDChangeOfPrimitiveContainer<ParserFailure>, FailureChange>);
static_assert(std::is_base_of_v<OCDChange, kd::zero::OCDChangeOfPrimitiveContainer<ParserFailure>>);
static_assert(std::has_virtual_destructor_v<OCDChange>);
static_assert(std::has_virtual_destructor_v<kd::zero::OCDChangeDescriptor>);
static_assert(std::is_enum_v<OCDChange::Operation> && std::is_enum_v<OCDChange::CollectionType>);

using MutableChildren = decltype(std::declval<Node::Impl&>().getChildrenMutable());
using Children = decltype(std::declval<const Node::Impl&>().getChildren());
using Failures = decltype(std::declval<Node::Impl&>().getParserFailuresMutable());
using Contributions = decltype(std::declval<Node::Impl&>().getContributorDataMutable());
using LineDataList = decltype(std::declval<NodeContributorData::Impl&>().getLineDataListMutable());
static_assert(std::is_same_v<MutableChildren, ElementSequence<Node>&>);
static_assert(std::is_same_v<Children, const ElementSequence<Node>&>);
static_assert(std::is_same_v<Failures, PrimitiveSequence<ParserFailure>&>);
static_assert(std::is_same_v<Contributions, ElementSequence<NodeContributorData>&>);
static_assert(std::is_same_v<LineDataList, ElementSequence<LineData>&>);

/// One announced change, with the number of failures that the node had at that moment.
struct Announcement {
  int operation;
  int collectionType;
  std::int64_t index;
  std::optional<ParserFailure> value;
  std::size_t storedBefore;
};

Announcement announcementOf(const OCDChange& change, std::size_t storedBefore) {
  const auto& made = dynamic_cast<const FailureChange&>(change);
  return {static_cast<int>(made.getOperation()), static_cast<int>(made.getCollectionType()),
          made.getIndex(), made.getValue(), storedBefore};
}

/// Records the announced changes of one node's failures.
class FailureListener : public kd::zero::ChangeListener {
 public:
  void modifying(const AbstractOwnedCollection& collection,
                 std::unique_ptr<OCDChange> change) override {
    announcements.push_back(announcementOf(*change, collection.size()));
  }

  std::vector<Announcement> announcements;
};

/// A document with one attached line that has no children.
class ModelCollectionsContract : public testing::Test {
 protected:
  ModelCollectionsContract() { document.addChild(line); }

  PlainTextNode makeText() const { return PlainTextNode::Builder(model).createPlainTextNode(kNil); }

  TesseraDocument document;
  const Model model = document.getModel();
  const LineNode line = LineNode::Builder(model).createLineNode(kNil);
};

ParserFailure failureNamed(const fl::i18n::ustring& id) {
  ParserFailure failure;
  failure.setFailureId(id);
  return failure;
}

TEST_F(ModelCollectionsContract, ChildrenKeepTheOrderOfTheAppends) {
  const PlainTextNode first = makeText();
  const Node second = makeText();
  line->getChildrenMutable().add(first);
  line->getChildrenMutable().add(second);
  line->getChildrenMutable().add(makeText());
  const ElementSequence<Node>& children = line->getChildren();
  ASSERT_EQ(children.size(), 3U);
  EXPECT_EQ(children.at(0).get(), first.get());
  EXPECT_EQ(children.at(1).get(), second.get());
}

TEST_F(ModelCollectionsContract, AnEmptyHandleIsIgnored) {
  line->getChildrenMutable().add(Node());
  line->getChildrenMutable().add(PlainTextNode());
  EXPECT_EQ(line->getChildren().size(), 0U);
}

TEST_F(ModelCollectionsContract, AChildAddedTwiceIsStoredOnce) {
  const PlainTextNode text = makeText();
  ASSERT_TRUE(line->getChildren().isUnique());
  line->getChildrenMutable().add(text);
  line->getChildrenMutable().add(text);
  EXPECT_EQ(line->getChildren().size(), 1U);
}

TEST_F(ModelCollectionsContract, ContributorDataAddedTwiceIsStoredOnce) {
  const NodeContributorData data =
      NodeContributorData::Builder(model).createNodeContributorData(kNil);
  ASSERT_TRUE(line->getContributorDataMutable().isUnique());
  line->getContributorDataMutable().add(data);
  line->getContributorDataMutable().add(data);
  EXPECT_EQ(line->getContributorDataMutable().size(), 1U);
}

TEST_F(ModelCollectionsContract, AnElementOfAnotherModelIsAnError) {
  TesseraDocument other;
  const PlainTextNode foreign = PlainTextNode::Builder(other.getModel()).createPlainTextNode(kNil);
  EXPECT_ANY_THROW(line->getChildrenMutable().add(foreign));
  EXPECT_EQ(line->getChildren().size(), 0U);
}

TEST_F(ModelCollectionsContract, ACollectionKnowsItsOwnerPropertyAndKind) {
  ElementSequence<Node>& children = line->getChildrenMutable();
  EXPECT_EQ(children.getOwner().get(), line.get());
  EXPECT_TRUE(children.isComposite());
  EXPECT_NE(children.getOpposite(), nullptr);
  const kd::zero::meta::Property& property = children.getCollectionProperty();
  PrimitiveSequence<ParserFailure>& failures = line->getParserFailuresMutable();
  EXPECT_EQ(failures.getOwner().get(), line.get());
  EXPECT_NE(&failures.getCollectionProperty(), &property);
  EXPECT_TRUE(line->getContributorDataMutable().isComposite());
  EXPECT_EQ(line->getContributorDataMutable().getOpposite(), nullptr);
}

TEST_F(ModelCollectionsContract, NoElementOfThisModelIsAProxy) {
  EXPECT_FALSE(line->isProxy());
  const ModelElement element = line;
  EXPECT_FALSE(element->isProxy());
}

TEST_F(ModelCollectionsContract, WhatAnOperationAppendsStaysOnlyWhenItIsCommitted) {
  ElementSequence<Node>& children = line->getChildrenMutable();
  PrimitiveSequence<ParserFailure>& failures = line->getParserFailuresMutable();
  {
    AbstractOwnedCollection::Operation ofChildren(children);
    AbstractOwnedCollection::Operation ofFailures(failures);
    children.add(makeText());
    failures.add(failureNamed(u"kept"));
    ofChildren.commit();
    ofFailures.commit();
  }
  EXPECT_EQ(children.size(), 1U);
  EXPECT_EQ(failures.size(), 1U);
  {
    const AbstractOwnedCollection::Operation ofChildren(children);
    const AbstractOwnedCollection::Operation ofFailures(failures);
    children.add(makeText());
    failures.add(failureNamed(u"abandoned"));
  }
  EXPECT_EQ(children.size(), 1U);
  EXPECT_EQ(failures.size(), 1U);
}

TEST_F(ModelCollectionsContract, AFailureIsAnnouncedBeforeItIsStored) {
  FailureListener listener;
  Model announcing = model;
  announcing.addListener(listener);
  const ParserFailure first = failureNamed(u"first");
  line->getParserFailuresMutable().add(first);
  line->getParserFailuresMutable().add(failureNamed(u"second"));
  announcing.removeListener(listener);

  ASSERT_EQ(listener.announcements.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const Announcement& announced = listener.announcements[i];
    EXPECT_EQ(announced.operation, 0);
    EXPECT_EQ(announced.collectionType, 0);
    EXPECT_EQ(announced.index, static_cast<std::int64_t>(i));
    EXPECT_EQ(announced.storedBefore, i);
    ASSERT_TRUE(announced.value.has_value());
  }
  EXPECT_TRUE(*listener.announcements[0].value == first);
  EXPECT_FALSE(*listener.announcements[1].value == first);
}

TEST_F(ModelCollectionsContract, AnEqualFailureIsNeitherStoredNorAnnounced) {
  FailureListener listener;
  Model announcing = model;
  announcing.addListener(listener);
  ASSERT_TRUE(line->getParserFailuresMutable().isUnique());
  line->getParserFailuresMutable().add(failureNamed(u"same"));
  line->getParserFailuresMutable().add(failureNamed(u"same"));
  announcing.removeListener(listener);
  EXPECT_EQ(line->getParserFailuresMutable().size(), 1U);
  EXPECT_EQ(listener.announcements.size(), 1U);
}

TEST_F(ModelCollectionsContract, ARemovedListenerIsNotCalled) {
  FailureListener listener;
  Model announcing = model;
  announcing.addListener(listener);
  announcing.removeListener(listener);
  line->getParserFailuresMutable().add(failureNamed(u"unheard"));
  EXPECT_TRUE(listener.announcements.empty());
}

TEST(ChangeRecordsContract, ADescriptorMakesARecordWithACopyOfItsValue) {
  ParserFailure value = failureNamed(u"described");
  const FailureDescriptor descriptor(static_cast<OCDChange::Operation>(0), std::int64_t{5}, &value);
  const kd::zero::OCDChangeDescriptor& base = descriptor;
  const std::unique_ptr<OCDChange> change = base.makeChange();
  value.setFailureId(u"changed");
  const Announcement made = announcementOf(*change, 0);
  EXPECT_EQ(made.operation, 0);
  EXPECT_EQ(made.collectionType, 0);
  EXPECT_EQ(made.index, 5);
  EXPECT_TRUE(made.value == failureNamed(u"described"));
}

TEST(ChangeRecordsContract, ADescriptorWithoutAValueMakesARecordWithoutOne) {
  const FailureDescriptor descriptor(static_cast<OCDChange::Operation>(0), std::int64_t{6},
                                     nullptr);
  const Announcement made = announcementOf(*descriptor.makeChange(), 0);
  EXPECT_EQ(made.index, 6);
  EXPECT_FALSE(made.value.has_value());
}

}  // namespace
