#include "kd/zero/ElementSequence.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <vector>

#include "foundation/core/except/Exception.hpp"
#include "kd0/messages/CannotCastIncompatibleTypes.hpp"
#include "kd0/messages/ElementOfAnotherModel.hpp"
#include "kd0/messages/ElementWithinItself.hpp"
#include "platform/model/Box.hpp"

namespace {

using foundation::core::except::Exception;
using kd::zero::AbstractOwnedCollection;
using kd::zero::Model;
using quenlith::test::Box;
using quenlith::test::holderReads;
using quenlith::test::liveBoxes;
using quenlith::test::Loaded;
using quenlith::test::makeBox;

using OtherModel = Exception<kd0::messages::ElementOfAnotherModel, std::exception>;
using WithinItself = Exception<kd0::messages::ElementWithinItself, std::exception>;
using CannotCast = Exception<kd0::messages::CannotCastIncompatibleTypes, std::exception>;

/// Tests an owner with a collection of every variant.
class ElementSequence : public testing::Test {
 protected:
  void TearDown() override {
    owner = other = Box();
    EXPECT_EQ(liveBoxes(), 0);
  }

  std::uint64_t operations() const { return model.getNumberOfOperations(); }

  Model model = Model::create();
  Box owner = makeBox(model);
  Box other = makeBox(model);
};

// What is common to all variants.

TEST_F(ElementSequence, AppendsAtTheEnd) {
  const Box first = makeBox(model);
  const Box second = makeBox(model);
  owner->parts.add(first);
  owner->parts.add(second);
  ASSERT_EQ(owner->parts.size(), 2u);
  EXPECT_EQ(owner->parts[0], first);
  EXPECT_EQ(owner->parts.at(1), second);
  EXPECT_EQ(*owner->parts.begin(), first);
  EXPECT_EQ(owner->parts.end() - owner->parts.begin(), 2);
}

TEST_F(ElementSequence, KeepsItsOrderWhenItGrows) {
  std::vector<Box> boxes;
  for (int i = 0; i < 100; ++i) {
    boxes.push_back(makeBox(model));
    owner->distinct.add(boxes.back());
    ASSERT_EQ(std::vector<Box>(owner->distinct.begin(), owner->distinct.end()), boxes);
  }
}

TEST_F(ElementSequence, KnowsItsOwnerAndProperty) {
  EXPECT_EQ(owner->heldParts.getOwner(), owner);
  EXPECT_EQ(owner->heldParts.getCollectionProperty().getName(), u"boxes");
  EXPECT_TRUE(owner->heldParts.isUnique());
  EXPECT_TRUE(owner->heldParts.isComposite());
  ASSERT_NE(owner->heldParts.getOpposite(), nullptr);
  EXPECT_EQ(owner->heldParts.getOpposite()->getName(), u"holder");
  EXPECT_FALSE(owner->anything.isUnique());
  EXPECT_FALSE(owner->anything.isComposite());
  EXPECT_EQ(owner->anything.getOpposite(), nullptr);
}

TEST_F(ElementSequence, HoldsAReferenceOfItsOwn) {
  owner->anything.add(makeBox(model));
  EXPECT_EQ(liveBoxes(), 3);
  owner = Box();
  EXPECT_EQ(liveBoxes(), 1);
}

TEST_F(ElementSequence, ThrowsForAnIndexBehindTheEnd) {
  EXPECT_TRUE(owner->parts.empty());
  EXPECT_THROW(owner->parts.at(0), std::out_of_range);
  owner->parts.add(makeBox(model));
  EXPECT_THROW(owner->parts.at(1), std::out_of_range);
}

TEST_F(ElementSequence, IgnoresTheEmptyHandle) {
  owner->parts.add(Box());
  owner->held.add(Box());
  owner->misread.add(Box());
  EXPECT_TRUE(owner->parts.empty());
  EXPECT_EQ(operations(), 0u);
}

TEST_F(ElementSequence, RefusesAnElementOfAnotherModelBeforeAnOperationOpens) {
  const Box foreign = makeBox(Model::create());
  for (Box::Impl::Boxes* each : {&owner->anything, &owner->distinct, &owner->held}) {
    try {
      each->add(foreign);
      FAIL() << "it was taken";
    } catch (const OtherModel& refusal) {
      EXPECT_EQ(refusal.getKey(), "ElementOfAnotherModel");
      EXPECT_EQ(refusal.getMessage().getArguments()[0], u"quenlith::test::Box");
      EXPECT_STREQ(refusal.what(),
                   "An element of type quenlith::test::Box belongs to another model than the "
                   "collection.");
    }
    EXPECT_TRUE(each->empty());
  }
  EXPECT_EQ(operations(), 0u);
  EXPECT_EQ(foreign->getModel().getNumberOfOperations(), 0u);
  EXPECT_FALSE(foreign->getContainer());
}

TEST_F(ElementSequence, RefusesAnElementOfAnotherModelBeforeAskingItsOpposite) {
  const Box foreign = makeBox(Model::create());
  const int before = holderReads();
  EXPECT_THROW(owner->held.add(foreign), OtherModel);
  EXPECT_THROW(owner->misread.add(foreign), OtherModel);
  EXPECT_EQ(holderReads(), before);
}

// Uniqueness.

TEST_F(ElementSequence, ThatIsNotUniqueTakesAnElementTwice) {
  const Box box = makeBox(model);
  owner->anything.add(box);
  owner->anything.add(box);
  EXPECT_EQ(owner->anything.size(), 2u);
  EXPECT_EQ(owner->anything[0], owner->anything[1]);
  EXPECT_EQ(operations(), 2u);
}

TEST_F(ElementSequence, ThatIsUniqueSkipsADuplicateWithoutAnOperation) {
  const Box box = makeBox(model);
  for (Box::Impl::Boxes* each : {&owner->distinct, &owner->parts, &owner->held, &owner->admired}) {
    const std::uint64_t before = operations();
    each->add(box);
    EXPECT_EQ(operations(), before + 1);
    each->add(box);
    EXPECT_EQ(operations(), before + 1);
    EXPECT_EQ(each->size(), 1u);
  }
}

TEST_F(ElementSequence, TellsElementsApartByIdentityHoweverManyThereAre) {
  std::vector<Box> boxes;
  for (int i = 0; i < 200; ++i) {
    boxes.push_back(makeBox(model));
    owner->distinct.add(boxes.back());
    for (const Box& box : boxes) owner->distinct.add(box);
    ASSERT_EQ(owner->distinct.size(), boxes.size());
  }
}

TEST_F(ElementSequence, AsksASingleValuedOppositeAndDoesNotScan) {
  const Box box = makeBox(model);
  const int before = holderReads();
  owner->held.add(box);
  EXPECT_EQ(holderReads(), before + 1);

  // The opposite alone decides: the element is not in the sequence, and says that it is.
  const Box claimant = makeBox(model);
  claimant->holder = owner.get();
  owner->held.add(claimant);
  EXPECT_EQ(owner->held.size(), 1u);

  // And the other way round.
  box->holder = nullptr;
  owner->held.add(box);
  EXPECT_EQ(owner->held.size(), 2u);
  EXPECT_EQ(owner->held[0], owner->held[1]);
}

TEST_F(ElementSequence, ScansWhenItsOppositeIsManyValued) {
  const Box box = makeBox(model);
  owner->admired.add(box);
  box->admirers.clear();
  owner->admired.add(box);
  EXPECT_EQ(owner->admired.size(), 1u);
}

TEST_F(ElementSequence, ThrowsWhenTheOppositeHoldsNoElement) {
  try {
    owner->misread.add(makeBox(model));
    FAIL() << "it was taken";
  } catch (const CannotCast& failure) {
    EXPECT_EQ(failure.getMessage().getArguments()[0], u"quenlith::test::Weight");
  }
  EXPECT_TRUE(owner->misread.empty());
  EXPECT_EQ(operations(), 0u);
}

// Proxies.

TEST_F(ElementSequence, DoesNotAskWhetherAProxyIsInItAndTellsItNothing) {
  const Box proxy = makeBox(model, Loaded::kNo);
  const int before = holderReads();
  for (Box::Impl::Boxes* each : {&owner->distinct, &owner->parts, &owner->heldParts,
                                 &owner->admired, &owner->misread, &owner->refused}) {
    each->add(proxy);
    each->add(proxy);
    EXPECT_EQ(each->size(), 2u);
  }
  EXPECT_EQ(holderReads(), before);
  EXPECT_FALSE(proxy->getContainer());
  EXPECT_EQ(proxy->holder, nullptr);
  EXPECT_TRUE(proxy->admirers.empty());
}

TEST_F(ElementSequence, RefusesAProxyOfAnotherModel) {
  EXPECT_THROW(owner->distinct.add(makeBox(Model::create(), Loaded::kNo)), OtherModel);
}

// The other side.

TEST_F(ElementSequence, ThatIsCompositeBecomesTheContainer) {
  const Box box = makeBox(model);
  owner->parts.add(box);
  EXPECT_EQ(box->getContainer(), owner);
  owner->repeatableParts.add(other);
  EXPECT_EQ(other->getContainer(), owner);
}

TEST_F(ElementSequence, ThatIsNeitherCompositeNorHasAnOppositeTellsTheElementNothing) {
  const Box box = makeBox(model);
  owner->anything.add(box);
  owner->distinct.add(box);
  EXPECT_FALSE(box->getContainer());
  EXPECT_EQ(box->holder, nullptr);
}

TEST_F(ElementSequence, WithAnOppositeSetsIt) {
  const Box box = makeBox(model);
  owner->held.add(box);
  EXPECT_EQ(box->holder, owner.get());
  owner->admired.add(box);
  other->admired.add(box);
  EXPECT_EQ(box->admirers,
            (std::vector<const kd::zero::ModelElement::Impl*>{owner.get(), other.get()}));
}

TEST_F(ElementSequence, HoldsTheElementWhenItsOppositeIsSet) {
  const Box first = makeBox(model);
  const Box second = makeBox(model);
  owner->admired.add(first);
  owner->admired.add(second);
  EXPECT_EQ(first->admiredWhenTold, 1u);
  EXPECT_EQ(second->admiredWhenTold, 2u);
}

TEST_F(ElementSequence, ThatIsCompositeAndHasAnOppositeSetsTheOppositeOnly) {
  const Box box = makeBox(model);
  owner->heldParts.add(box);
  EXPECT_EQ(box->holder, owner.get());
  EXPECT_FALSE(box->getContainer());
}

TEST_F(ElementSequence, StaysAsItWasWhenTheOppositeCannotBeSet) {
  for (int size = 0; size < 3; ++size) {
    const Box box = makeBox(model);
    EXPECT_THROW(owner->refused.add(box), quenlith::test::Refused);
    EXPECT_EQ(owner->refused.size(), static_cast<std::size_t>(size));
    owner->refused.add(makeBox(model, Loaded::kNo));
  }
  EXPECT_EQ(liveBoxes(), 5);
}

TEST_F(ElementSequence, ALargeOneForgetsAnElementWhoseOppositeCannotBeSet) {
  for (int i = 0; i < 20; ++i) owner->refused.add(makeBox(model, Loaded::kNo));
  EXPECT_THROW(owner->refused.add(makeBox(model)), quenlith::test::Refused);
  EXPECT_EQ(owner->refused.size(), 20u);
  EXPECT_EQ(liveBoxes(), 22);
}

TEST_F(ElementSequence, ALargeOneTakesAnElementLaterThatItCouldNotTakeAtFirst) {
  constexpr std::size_t kMany = 20;
  for (std::size_t i = 0; i < kMany; ++i) owner->admired.add(makeBox(model));
  const Box box = makeBox(model);
  box->refusesAdmirers = true;
  EXPECT_THROW(owner->admired.add(box), quenlith::test::Refused);
  EXPECT_EQ(owner->admired.size(), kMany);
  box->refusesAdmirers = false;
  owner->admired.add(box);
  EXPECT_EQ(owner->admired.size(), kMany + 1);
}

TEST_F(ElementSequence, ALargeOneTakesAnElementAgainThatWasRolledBack) {
  constexpr std::size_t kMany = 20;
  for (std::size_t i = 0; i < kMany; ++i) owner->distinct.add(makeBox(model));
  const Box box = makeBox(model);
  {
    const AbstractOwnedCollection::Operation undone(owner->distinct);
    owner->distinct.add(box);
    EXPECT_EQ(owner->distinct.size(), kMany + 1);
  }
  EXPECT_EQ(owner->distinct.size(), kMany);
  owner->distinct.add(box);
  EXPECT_EQ(owner->distinct.size(), kMany + 1);
}

// From one owner to another.

TEST_F(ElementSequence, TakesAnElementFromTheOwnerThatItBelongedTo) {
  const Box first = makeBox(model);
  const Box moved = makeBox(model);
  const Box last = makeBox(model);
  for (const Box& box : {first, moved, last}) owner->parts.add(box);
  other->parts.add(moved);
  EXPECT_EQ(moved->getContainer(), other);
  EXPECT_EQ(std::vector<Box>(owner->parts.begin(), owner->parts.end()),
            (std::vector<Box>{first, last}));
  other->parts.add(first);
  other->parts.add(last);
  EXPECT_TRUE(owner->parts.empty());
  EXPECT_EQ(other->parts.size(), 3u);
}

TEST_F(ElementSequence, TakesAnElementFromAnotherCollectionOfTheSameOwner) {
  const Box box = makeBox(model);
  owner->parts.add(box);
  owner->repeatableParts.add(box);
  EXPECT_TRUE(owner->parts.empty());
  EXPECT_EQ(owner->repeatableParts.size(), 1u);
  EXPECT_EQ(box->getContainer(), owner);
}

TEST_F(ElementSequence, ThatIsRepeatableLosesEveryPlaceOfAnElementThatMoves) {
  const Box box = makeBox(model);
  owner->repeatableParts.add(box);
  owner->repeatableParts.add(other);
  owner->repeatableParts.add(box);
  EXPECT_EQ(owner->repeatableParts.size(), 3u);
  const Box third = makeBox(model);
  third->parts.add(box);
  EXPECT_EQ(owner->repeatableParts.size(), 1u);
  EXPECT_EQ(owner->repeatableParts[0], other);
}

TEST_F(ElementSequence, TakesAnElementBackThatHadLeft) {
  constexpr std::size_t kMany = 40;
  std::vector<Box> boxes;
  for (std::size_t i = 0; i < kMany; ++i) {
    boxes.push_back(makeBox(model));
    owner->parts.add(boxes.back());
  }
  for (const Box& box : boxes) other->parts.add(box);
  EXPECT_TRUE(owner->parts.empty());
  for (const Box& box : boxes) owner->parts.add(box);
  EXPECT_TRUE(other->parts.empty());
  EXPECT_EQ(owner->parts.size(), kMany);
}

TEST_F(ElementSequence, AnElementBelongsToNobodyWhenItsOwnerHasEnded) {
  const Box box = makeBox(model);
  owner->parts.add(box);
  owner = Box();
  EXPECT_FALSE(box->getContainer());
  other->parts.add(box);
  EXPECT_EQ(box->getContainer(), other);
}

TEST_F(ElementSequence, TheEndOfAFormerOwnerLeavesTheContainerAsItIs) {
  const Box box = makeBox(model);
  owner->distinct.add(box);
  other->parts.add(box);
  owner = Box();
  EXPECT_EQ(box->getContainer(), other);
}

// Circles.

TEST_F(ElementSequence, RefusesToContainItsOwner) {
  EXPECT_THROW(owner->parts.add(owner), WithinItself);
  EXPECT_TRUE(owner->parts.empty());
  EXPECT_EQ(operations(), 0u);
}

TEST_F(ElementSequence, RefusesToContainWhatItsOwnerIsWithin) {
  const Box leaf = makeBox(model);
  owner->parts.add(other);
  other->parts.add(leaf);
  try {
    leaf->parts.add(owner);
    FAIL() << "it was taken";
  } catch (const WithinItself& refusal) {
    EXPECT_STREQ(refusal.what(),
                 "An element of type quenlith::test::Box cannot be contained in itself.");
    EXPECT_EQ(refusal.getKey(), "ElementWithinItself");
  }
  EXPECT_TRUE(leaf->parts.empty());
  EXPECT_FALSE(owner->getContainer());
}

TEST_F(ElementSequence, ThatLinksTheContainerRefusesWhatItsOwnerIsWithin) {
  EXPECT_FALSE(owner->linked.isComposite());
  owner->linked.add(other);
  EXPECT_EQ(other->getContainer(), owner);
  EXPECT_THROW(other->linked.add(owner), WithinItself);
  EXPECT_THROW(other->linked.add(other), WithinItself);
  EXPECT_TRUE(other->linked.empty());
  EXPECT_FALSE(owner->getContainer());
}

TEST_F(ElementSequence, TakesAnElementThatContainsOthers) {
  const Box top = makeBox(model);
  other->parts.add(makeBox(model));
  owner->parts.add(other);
  top->parts.add(owner);
  EXPECT_EQ(other->parts[0]->getContainer(), other);
}

TEST_F(ElementSequence, ThatContainsNothingMayReferToWhatItsOwnerIsWithin) {
  owner->parts.add(other);
  // Elements that refer to one another end when that is undone.
  const AbstractOwnedCollection::Operation upwards(other->admired);
  other->admired.add(owner);
  EXPECT_EQ(other->admired[0], owner);
  const AbstractOwnedCollection::Operation toItself(other->distinct);
  other->distinct.add(other);
  EXPECT_EQ(other->distinct[0], other);
}

// Limits.

/// A sequence whose size can be set to the limit.
class Fillable : public kd::zero::ReferenceCollection {
 public:
  Fillable(kd::zero::ModelElement::Impl* const& place, const kd::zero::meta::Property& property)
      : ReferenceCollection(place, property) {}
  void setSize(std::uint32_t size) { count = size; }
  void add(const Box& box) { append(box); }
};

struct PartOfAnOwner {
  explicit PartOfAnOwner(const Box& box)
      : owner(box.get()), sequence(owner, box->anything.getCollectionProperty()) {}
  kd::zero::ModelElement::Impl* owner;
  Fillable sequence;
};

TEST_F(ElementSequence, ThatIsFullRefusesAnElement) {
  PartOfAnOwner part(owner);
  part.sequence.setSize(std::numeric_limits<std::uint32_t>::max());
  EXPECT_THROW(part.sequence.add(other), std::length_error);
  EXPECT_EQ(part.sequence.size(), std::numeric_limits<std::uint32_t>::max());
  part.sequence.setSize(0);
}

TEST_F(ElementSequence, FindsItsOwnerFromAPartOfTheOwner) {
  PartOfAnOwner part(owner);
  EXPECT_EQ(part.sequence.getOwner(), owner);
  const AbstractOwnedCollection::Operation undone(part.sequence);
  part.sequence.add(other);
  EXPECT_EQ(part.sequence.size(), 1u);
}

}  // namespace
