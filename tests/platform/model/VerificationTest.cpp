#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "kd/zero/Poison.hpp"
#include "kd/zero/Verification.hpp"
#include "platform/model/Box.hpp"
#include "support/nilUuid.hpp"

namespace {

using contributors::kdzero::LineData;
using contributors::kdzero::NodeContributorData;
using document::kdzero::LineNode;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using kd::zero::Model;
using kd::zero::ModelElement;
using quenlith::test::Box;
using quenlith::test::kNil;
using quenlith::test::Loaded;
using quenlith::test::makeBox;

/// Overwrites bytes of an object; the destructor restores them.
class Corruption {
 public:
  template <class T>
  Corruption(const void* object, std::size_t offset, T value)
      : place(static_cast<char*>(const_cast<void*>(object)) + offset),
        // NOLINTNEXTLINE(bugprone-sizeof-expression): a pointer is overwritten as a pointer
        saved(place, place + sizeof(T)) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): as above
    std::memcpy(place, &value, sizeof(T));
  }
  ~Corruption() { std::memcpy(place, saved.data(), saved.size()); }
  Corruption(const Corruption&) = delete;
  Corruption& operator=(const Corruption&) = delete;

 private:
  char* place;
  std::vector<char> saved;
};

// The memory of an element and of a collection, as docs/model.md draws it.
constexpr std::size_t kReferences = 0;
constexpr std::size_t kContainerProperty = 4;
constexpr std::size_t kClass = 6;
constexpr std::size_t kContainer = 8;
constexpr std::size_t kCount = 0;
constexpr std::size_t kProperty = 4;
constexpr std::size_t kPlaces = 8;

/// A document with each kind of block: separate texts, collections with blocks, rare parts, and
/// free blocks.
class Verify : public testing::Test {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < 40; ++i) document.addChild(makeLine(i));
    document.getChildAt(3)->setAnchorId(u"anchor");
    addFailures(document.getChildAt(4)->getParserFailuresMutable());
    const NodeContributorData data =
        NodeContributorData::Builder(model).createNodeContributorData(kNil);
    data->getLineDataListMutable().add(LineData::Builder(model).createLineData(kNil));
    document.getChildAt(5)->getContributorDataMutable().add(data);
    for (std::size_t i = 0; i < 5; ++i) makeLine(i);
    line = LineNode::castFrom(document.getChildAt(20));
    text = PlainTextNode::castFrom(line->getChildren()[1]);
  }
  void TearDown() override { EXPECT_EQ(model.findBrokenInvariant(), nullptr); }

  LineNode makeLine(std::size_t children) const {
    LineNode line = LineNode::Builder(model).createLineNode(kNil);
    for (std::size_t i = 0; i < children; ++i) {
      const PlainTextNode text = PlainTextNode::Builder(model).createPlainTextNode(kNil);
      text->setText(u"text");
      if (i % 3 == 0) text->setText(std::u16string(i * 10, u'x'));
      line->getChildrenMutable().add(text);
    }
    return line;
  }

  static void addFailures(kd::zero::PrimitiveSequence<ParserFailure>& failures) {
    for (char16_t id = u'a'; id < u'z'; ++id) {
      failures.add(ParserFailure().setFailureId(std::u16string(1, id)));
    }
  }

  std::string broken() const {
    const char* text = model.findBrokenInvariant();
    return text == nullptr ? "" : text;
  }

  TesseraDocument document;
  Model model = document.getModel();
  LineNode line;
  PlainTextNode text;
};

TEST_F(Verify, FindsNothingInADocumentWithEachKindOfBlock) {
  EXPECT_TRUE(model.verify());
  EXPECT_TRUE(model.verify(line));
  EXPECT_TRUE(model.verify(makeLine(2)));
}

TEST_F(Verify, AcceptsAnElementThatReturnsToAnOwnerWithASingleValuedOpposite) {
  const Box owner = makeBox(model);
  const Box other = makeBox(model);
  const Box box = makeBox(model);
  owner->held.add(box);
  other->held.add(box);
  owner->held.add(box);
  ASSERT_EQ(owner->held.size(), 2u);
  EXPECT_STREQ(model.findBrokenInvariant(owner), nullptr);
}

TEST_F(Verify, AcceptsAProxyThatIsInAUniqueCollectionTwice) {
  const Box owner = makeBox(model);
  const Box proxy = makeBox(model, Loaded::kNo);
  owner->distinct.add(proxy);
  owner->distinct.add(proxy);
  ASSERT_EQ(owner->distinct.size(), 2u);
  EXPECT_STREQ(model.findBrokenInvariant(owner), nullptr);
}

TEST_F(Verify, ChecksTreesThatOverlapInOneRun) {
  kd::zero::Verification verification(model.storage());
  verification.checkTree(*line.get());
  verification.checkTree(*text.get());
  verification.finish();
  EXPECT_STREQ(verification.getBroken(), nullptr);
}

TEST_F(Verify, FindsAReferenceTooFew) {
  const Corruption corruption(text.get(), kReferences, std::uint32_t{0});
  EXPECT_EQ(broken(), "an element that is in use has a reference");
  EXPECT_FALSE(model.verify());
  EXPECT_FALSE(model.verify(line));
}

TEST_F(Verify, FindsAPlaceWithoutAReference) {
  const Box owner = makeBox(model);
  const Box part = makeBox(model);
  owner->anything.add(part);
  owner->anything.add(part);
  EXPECT_TRUE(model.verify(owner));
  const Corruption corruption(part.get(), kReferences, std::uint32_t{1});
  EXPECT_STREQ(model.findBrokenInvariant(owner),
               "an element has a reference for each of its places");
}

TEST_F(Verify, FindsAWrongContainer) {
  const Corruption corruption(text.get(), kContainer, document.getChildAt(21).get());
  EXPECT_EQ(broken(), "an element in a containing collection knows its container");
}

TEST_F(Verify, FindsAWrongContainerProperty) {
  const Corruption corruption(text.get(), kContainerProperty, std::uint16_t{2});
  EXPECT_EQ(broken(), "an element in a containing collection knows its container");
}

TEST_F(Verify, FindsAContainerThatDoesNotHaveTheElement) {
  const LineNode detached = makeLine(2);
  const Corruption container(detached.get(), kContainer, line.get());
  EXPECT_STREQ(model.findBrokenInvariant(detached),
               "an element is in the collection of its container");
}

TEST_F(Verify, FindsAContainerWithoutTheCollection) {
  const LineNode detached = makeLine(2);
  const Corruption container(detached.get(), kContainer, line.get());
  const Corruption property(detached.get(), kContainerProperty, std::uint16_t{60000});
  EXPECT_STREQ(model.findBrokenInvariant(detached),
               "a container has a collection that contains elements");
}

TEST_F(Verify, FindsAContainerInAnotherModel) {
  const Box other = makeBox(Model::create());
  const LineNode detached = makeLine(2);
  const Corruption container(detached.get(), kContainer, other.get());
  EXPECT_STREQ(model.findBrokenInvariant(detached),
               "a place of a collection refers to an element of the same model");
}

TEST_F(Verify, FindsAClassWithoutElements) {
  const Corruption corruption(text.get(), kClass, std::uint8_t{126});
  EXPECT_EQ(broken(), "an element is of a class that has elements");
}

TEST_F(Verify, FindsACollectionLargerThanItsBlock) {
  const Corruption corruption(&line->getChildren(), kCount, std::uint32_t{1000});
  EXPECT_EQ(broken(), "a collection is not larger than its block");
}

TEST_F(Verify, FindsACollectionOfAnotherProperty) {
  const Corruption corruption(&line->getChildren(), kProperty, std::uint16_t{60000});
  EXPECT_EQ(broken(), "a collection has a property");
}

TEST_F(Verify, ChecksTheRarePartsOfANode) {
  const auto& failures = document.getChildAt(4)->getParserFailuresMutable();
  const auto& contributorData = document.getChildAt(5)->getContributorDataMutable();
  {
    const kd::zero::AbstractOwnedCollection& collection = failures;
    const Corruption corruption(&collection, kCount, std::uint32_t{1000});
    EXPECT_EQ(broken(), "a sequence of values knows its size");
  }
  {
    const Corruption corruption(&contributorData, kProperty, std::uint16_t{60000});
    EXPECT_EQ(broken(), "a collection has a property");
  }
  {
    const Corruption corruption(&contributorData[0]->getLineDataList(), kProperty,
                                std::uint16_t{60000});
    EXPECT_EQ(broken(), "a collection has a property");
  }
  // The owner of the rare parts is before their collections.
  const char* const owner = reinterpret_cast<const char*>(&failures) - sizeof(void*);
  const Corruption corruption(owner, 0, line.get());
  EXPECT_EQ(broken(), "the rare parts of a node know the node");
}

TEST_F(Verify, FindsAPlaceThatRefersToNoElement) {
  ModelElement::Impl* const* block = nullptr;
  std::memcpy(&block, reinterpret_cast<const char*>(&line->getChildren()) + kPlaces, sizeof block);
  const Corruption corruption(block, 0, &document);
  EXPECT_EQ(broken(), "a place of a collection refers to an element of the same model");
}

TEST_F(Verify, FindsAnElementThatIsInAUniqueCollectionTwice) {
  ModelElement::Impl* const* block = nullptr;
  std::memcpy(&block, reinterpret_cast<const char*>(&line->getChildren()) + kPlaces, sizeof block);
  const Corruption corruption(block, 0, text.get());
  EXPECT_EQ(broken(), "no element is in a unique collection twice");
}

TEST_F(Verify, FindsAFreeBlockThatIsInUse) {
  const PlainTextNode separate = PlainTextNode::castFrom(line->getChildren()[3]);
  auto* units = const_cast<char16_t*>(separate->getText().data());
  const std::size_t sizeBytes = separate->getText().size() * sizeof(char16_t);
  ASSERT_NE(static_cast<void*>(units), static_cast<void*>(separate.get() + 1));
  model.storage().deallocate(units, sizeBytes);
  EXPECT_EQ(broken(), "no two blocks of the storage overlap");
  EXPECT_EQ(model.storage().allocate(sizeBytes), units);
}

TEST_F(Verify, FindsACycleOfFreeBlocks) {
  void* first = model.storage().allocate(480);
  void* second = model.storage().allocate(480);
  model.storage().deallocate(first, 480);
  model.storage().deallocate(second, 480);
  // The address sanitizer would report the second release.
  kd::zero::unpoison(first, 480);
  model.storage().deallocate(first, 480);
  EXPECT_EQ(broken(), "a list of free blocks ends");
  EXPECT_EQ(model.storage().allocate(480), first);
  EXPECT_EQ(model.storage().allocate(480), second);
  EXPECT_EQ(model.storage().allocate(480), first);
  // The list is still a cycle: terminate it.
  std::memset(first, 0, sizeof(void*));
  EXPECT_EQ(model.storage().allocate(480), second);
  EXPECT_EQ(model.storage().allocate(480), first);
}

TEST_F(Verify, FindsAChunkOfAnotherModel) {
  const auto offset = reinterpret_cast<std::uintptr_t>(line.get()) & std::uintptr_t{0xFFFF};
  const char* chunk = reinterpret_cast<const char*>(line.get()) - offset;
  const TesseraDocument other;
  const Corruption corruption(chunk, 0, &other.getModel().storage());
  EXPECT_EQ(broken(), "a chunk begins with the address of its storage");
}

#ifndef NDEBUG
using VerifyDeathTest = Verify;

TEST_F(VerifyDeathTest, ADocumentRefusesANodeThatIsBroken) {
  const LineNode added = makeLine(2);
  EXPECT_DEATH(
      {
        const Corruption corruption(added->getChildren()[0].get(), kReferences, std::uint32_t{0});
        document.addChild(added);
      },
      "verify");
}
#endif

}  // namespace
