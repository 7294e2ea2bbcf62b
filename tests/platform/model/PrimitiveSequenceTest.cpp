#include "kd/zero/PrimitiveSequence.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/model/Box.hpp"
#include "platform/model/Witness.hpp"

namespace {

using kd::zero::AbstractOwnedCollection;
using kd::zero::Model;
using kd::zero::OCDChange;
using kd::zero::OCDChangeOfPrimitiveContainer;
using kd::zero::OCDChangeOfPrimitiveSequence;
using quenlith::test::Box;
using quenlith::test::makeBox;
using quenlith::test::Number;
using quenlith::test::UnhashedNumber;
using quenlith::test::Veto;
using quenlith::test::Witness;

class PrimitiveSequence : public testing::Test {
 protected:
  void TearDown() override { Number::throwOnCopy = false; }

  std::vector<int> numbers() const {
    std::vector<int> values;
    for (const Number& number : owner->numbers) values.push_back(number.value);
    return values;
  }
  void fill(int count) {
    for (int i = 0; i < count; ++i) owner->numbers.add(Number(i));
  }

  Model model = Model::create();
  Box owner = makeBox(model);
};

TEST_F(PrimitiveSequence, AppendsACopyAtTheEnd) {
  std::string word = "one";
  owner->words.add(word);
  word = "two";
  owner->words.add(word);
  ASSERT_EQ(owner->words.size(), 2u);
  EXPECT_EQ(owner->words[0], "one");
  EXPECT_EQ(owner->words.at(1), "two");
  EXPECT_EQ(*owner->words.data(), "one");
  EXPECT_EQ(owner->words.end() - owner->words.begin(), 2);
  EXPECT_THROW(owner->words.at(2), std::out_of_range);
}

TEST_F(PrimitiveSequence, ThatIsNotUniqueTakesAnEqualValueAgain) {
  owner->words.add("same");
  owner->words.add(owner->words[0]);
  EXPECT_EQ(owner->words.size(), 2u);
  EXPECT_TRUE(owner->words.contains("same"));
  EXPECT_FALSE(owner->words.contains("other"));
}

TEST_F(PrimitiveSequence, ThatIsUniqueSkipsAnEqualValueHoweverManyThereAre) {
  for (int count = 0; count < 100; ++count) {
    owner->numbers.add(Number(count));
    owner->unhashedNumbers.add(UnhashedNumber{count});
    for (int i = 0; i <= count; ++i) {
      owner->numbers.add(Number(i));
      owner->unhashedNumbers.add(UnhashedNumber{i});
    }
    ASSERT_EQ(owner->numbers.size(), static_cast<std::size_t>(count) + 1);
    ASSERT_EQ(owner->unhashedNumbers.size(), static_cast<std::size_t>(count) + 1);
  }
  EXPECT_TRUE(owner->numbers.contains(Number(99)));
  EXPECT_FALSE(owner->numbers.contains(Number(100)));
}

TEST_F(PrimitiveSequence, TellsOfAnAppendOnceAndBeforeTheValueIsStored) {
  Witness witness;
  model.addListener(witness);
  fill(2);
  owner->numbers.add(Number(7));
  ASSERT_EQ(witness.changes.size(), 3u);
  EXPECT_EQ(witness.sizes, (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_EQ(witness.owners[2], owner);

  const OCDChange& change = *witness.changes[2];
  EXPECT_EQ(static_cast<int>(change.getOperation()), 0);
  EXPECT_EQ(static_cast<int>(change.getCollectionType()), 0);
  const auto* record = dynamic_cast<const OCDChangeOfPrimitiveSequence<Number>*>(&change);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->getIndex(), 2);
  ASSERT_TRUE(record->getValue().has_value());
  EXPECT_EQ(record->getValue()->value, 7);
  model.removeListener(witness);
}

TEST_F(PrimitiveSequence, TellsNothingOfADuplicateAndOpensNoOperation) {
  Witness witness;
  model.addListener(witness);
  owner->numbers.add(Number(7));
  EXPECT_EQ(model.getNumberOfOperations(), 1u);
  owner->numbers.add(Number(7));
  EXPECT_EQ(witness.changes.size(), 1u);
  EXPECT_EQ(model.getNumberOfOperations(), 1u);
  model.removeListener(witness);
}

TEST_F(PrimitiveSequence, MakesNoRecordWithoutAListener) {
  const std::size_t before = Number::copies;
  owner->numbers.add(Number(7));
  // The one copy is the stored one.
  EXPECT_EQ(Number::copies, before + 1);
}

TEST_F(PrimitiveSequence, StaysAsItWasWhenAListenerThrows) {
  Witness witness;
  model.addListener(witness);
  for (const int count : {0, 1, 15, 16, 40}) {
    witness.vetoes = false;
    fill(count);
    const std::vector<int> before = numbers();
    witness.vetoes = true;
    EXPECT_THROW(owner->numbers.add(Number(1000)), Veto);
    EXPECT_EQ(numbers(), before);
    EXPECT_EQ(owner->numbers.size(), before.size());
    EXPECT_FALSE(owner->numbers.contains(Number(1000)));
  }
  model.removeListener(witness);
  owner->numbers.add(Number(1000));
  EXPECT_TRUE(owner->numbers.contains(Number(1000)));
}

TEST_F(PrimitiveSequence, StaysAsItWasWhenTheCopyThrows) {
  for (const int count : {0, 1, 20}) {
    fill(count);
    const std::vector<int> before = numbers();
    const Number value(1000);
    Number::throwOnCopy = true;
    EXPECT_THROW(owner->numbers.add(value), Number::CopyFailure);
    Number::throwOnCopy = false;
    EXPECT_EQ(numbers(), before);
  }
}

TEST_F(PrimitiveSequence, ToldChangesThatDidNotComeCostNothingLater) {
  constexpr int kValues = 2000;
  fill(kValues);
  Witness witness;
  witness.vetoes = true;
  model.addListener(witness);
  const std::size_t before = Number::comparisons;
  for (int i = 0; i < kValues; ++i) {
    EXPECT_THROW(owner->numbers.add(Number(kValues + i)), Veto);
  }
  EXPECT_LT(Number::comparisons - before, 4u * kValues);
  model.removeListener(witness);
}

TEST_F(PrimitiveSequence, AppendsAtConstantCostOnAverage) {
  constexpr int kValues = 100000;
  const std::size_t before = Number::comparisons;
  fill(kValues);
  EXPECT_EQ(owner->numbers.size(), static_cast<std::size_t>(kValues));
  EXPECT_LT(Number::comparisons - before, 3u * kValues);
}

// Limits.

/// Gives access to the size of a sequence, whose limit no test can fill.
struct SequenceSize : AbstractOwnedCollection {
  static constexpr auto kCount = &SequenceSize::count;
};

TEST_F(PrimitiveSequence, ThatIsFullRefusesAValue) {
  constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
  Witness witness;
  owner->words.add("kept");
  model.addListener(witness);
  AbstractOwnedCollection& words = owner->words;
  words.*SequenceSize::kCount = kMost - 1;
  owner->words.add("the last one");
  words.*SequenceSize::kCount = kMost;
  EXPECT_THROW(owner->words.add("one too many"), std::length_error);
  EXPECT_EQ(owner->words.size(), kMost);
  EXPECT_EQ(owner->words.end() - owner->words.begin(), 2);
  EXPECT_EQ(witness.changes.size(), 1u);
  EXPECT_EQ(model.getNumberOfOperations(), 2u);
  words.*SequenceSize::kCount = 2;
  model.removeListener(witness);
}

// The scoped change.

TEST_F(PrimitiveSequence, AnOperationThatIsNotCommittedIsRolledBack) {
  for (const int count : {0, 3, 20}) {
    fill(count);
    const std::vector<int> before = numbers();
    {
      const AbstractOwnedCollection::Operation operation(owner->numbers);
      owner->numbers.add(Number(1000));
      owner->numbers.add(Number(1001));
      EXPECT_EQ(owner->numbers.size(), before.size() + 2);
    }
    EXPECT_EQ(numbers(), before);
    owner->numbers.add(Number(1000));
    EXPECT_EQ(owner->numbers.size(), before.size() + 1);
    EXPECT_EQ(numbers().back(), 1000);
    owner = makeBox(model);
  }
}

TEST_F(PrimitiveSequence, AnOperationThatIsCommittedStays) {
  {
    AbstractOwnedCollection::Operation operation(owner->numbers);
    owner->numbers.add(Number(1000));
    operation.commit();
  }
  EXPECT_EQ(numbers(), std::vector<int>{1000});
}

TEST_F(PrimitiveSequence, AnOuterOperationRollsBackWhatAnInnerOneCommitted) {
  owner->numbers.add(Number(1));
  {
    const AbstractOwnedCollection::Operation outer(owner->numbers);
    {
      AbstractOwnedCollection::Operation inner(owner->numbers);
      owner->numbers.add(Number(2));
      inner.commit();
    }
    {
      const AbstractOwnedCollection::Operation inner(owner->numbers);
      owner->numbers.add(Number(3));
    }
    EXPECT_EQ(numbers(), (std::vector<int>{1, 2}));
  }
  EXPECT_EQ(numbers(), std::vector<int>{1});
}

TEST_F(PrimitiveSequence, AnOperationOnElementsIsRolledBackToo) {
  const Box kept = makeBox(model);
  owner->parts.add(kept);
  const Box dropped = makeBox(model);
  {
    const AbstractOwnedCollection::Operation operation(owner->parts);
    owner->parts.add(dropped);
    for (int i = 0; i < 30; ++i) owner->parts.add(makeBox(model));
  }
  ASSERT_EQ(owner->parts.size(), 1u);
  EXPECT_EQ(owner->parts[0], kept);
  EXPECT_EQ(kept->getContainer(), owner);
  EXPECT_FALSE(dropped->getContainer());
  EXPECT_EQ(quenlith::test::liveBoxes(), 3);
  owner->parts.add(dropped);
  EXPECT_EQ(dropped->getContainer(), owner);
}

TEST_F(PrimitiveSequence, RollingBackARepetitionLeavesTheContainer) {
  const Box part = makeBox(model);
  owner->repeatableParts.add(part);
  {
    const AbstractOwnedCollection::Operation operation(owner->repeatableParts);
    owner->repeatableParts.add(part);
  }
  EXPECT_EQ(owner->repeatableParts.size(), 1u);
  EXPECT_EQ(part->getContainer(), owner);
}

// The descriptor.

TEST(OCDChangeDescriptor, MakesARecordWithoutAValueWhenItHasNone) {
  const kd::zero::OCDChangeDescriptorOfPrimitiveSequence<int> descriptor(
      OCDChange::Operation::kAppend, 4, nullptr);
  const std::unique_ptr<OCDChange> change = descriptor.makeChange();
  const auto* record = dynamic_cast<const OCDChangeOfPrimitiveSequence<int>*>(change.get());
  ASSERT_NE(record, nullptr);
  EXPECT_FALSE(record->getValue().has_value());
  EXPECT_EQ(record->getIndex(), 4);
  EXPECT_NE(dynamic_cast<const OCDChangeOfPrimitiveContainer<int>*>(change.get()), nullptr);
}

TEST(OCDChangeDescriptor, MakesANewRecordEachTime) {
  const int value = 3;
  const kd::zero::OCDChangeDescriptorOfPrimitiveSequence<int> descriptor(
      OCDChange::Operation::kAppend, 0, &value);
  EXPECT_NE(descriptor.makeChange(), descriptor.makeChange());
}

}  // namespace
