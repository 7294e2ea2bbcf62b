#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <stdexcept>
#include <vector>

#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/keys.hpp"
#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"

namespace {

using kd::zero::ElementMaker;
using kd::zero::Model;
using kd::zero::ModelElement;
using kd::zero::ReferenceCollection;
using kd::zero::meta::Class;
using kd::zero::meta::ClassKey;
using kd::zero::meta::Property;
using kd::zero::meta::PropertyKey;

// Descriptions exist as long as the process, so this is a separate program.

/// Handle to an element of a class that was described after very many others.
class LateElement : public kd::zero::Handle<LateElement, ModelElement> {
 public:
  class Impl;
};

const Property& lateParts();

class LateElement::Impl final : public ModelElement::Impl {
 public:
  static const Class& classOf() {
    static const Class metaClass =
        ElementMaker::describe<Impl>(u"test::LateElement", Class::modelElement());
    return metaClass;
  }

  kd::zero::ElementSequence<LateElement> parts;
  std::uint64_t value = 7;

 private:
  friend struct ElementMaker;

  Impl() : ModelElement::Impl(classOf()), parts(*this, lateParts()) {}
  ~Impl() = default;
  void releaseAll(ModelElement::DeferredReleases& releases) noexcept { parts.releaseAll(releases); }
  void verifyParts(kd::zero::Verification& verification) const {
    parts.verify(*this, verification);
  }
};

ReferenceCollection* latePartsOf(ModelElement::Impl& owner) noexcept {
  return &static_cast<LateElement::Impl&>(owner).parts;
}

const Property& lateParts() {
  static const Property property({.name = u"parts",
                                  .many = true,
                                  .unique = true,
                                  .composite = true,
                                  .collectionOf = &latePartsOf});
  return property;
}

LateElement makeLate(const Model& model) {
  return ElementMaker::make<LateElement>(model.storage());
}

constexpr std::size_t kManyClasses = 70000;

/// Describes many classes, once.
void describeManyClasses() {
  static std::deque<Class> classes;
  while (classes.size() < kManyClasses) {
    classes.emplace_back(u"test::Class", &Class::modelElement());
  }
}

TEST(Class, HasElementsHoweverManyClassesThereAre) {
  describeManyClasses();
  const Model model = Model::create();
  std::vector<LateElement> elements;
  for (int i = 0; i < 3000; ++i) elements.push_back(makeLate(model));
  const ClassKey key = elements[0]->getMetaClass();
  EXPECT_EQ(key.index, ClassKey::kNotInTable);
  for (const LateElement& element : elements) {
    ASSERT_EQ(&element->getMetaClass(), &LateElement::Impl::classOf());
    ASSERT_EQ(element->value, 7u);
    ASSERT_TRUE(LateElement::castFrom(element));
    if (element != elements[0]) elements[0]->parts.add(element);
  }
  EXPECT_EQ(elements[0]->getMetaClass().getQualifiedName(), u"test::LateElement");
  EXPECT_EQ(elements[5]->getContainer(), elements[0]);
  EXPECT_EQ(model.findBrokenInvariant(elements[0]), nullptr);
}

TEST(Class, ElementsOutsideTheTableReturnTheirWholeBlocks) {
  describeManyClasses();
  const Model model = Model::create();
  LateElement element = makeLate(model);
  const auto* place = reinterpret_cast<const std::byte*>(element.get()) - sizeof(const Class*);
  element = LateElement();
  EXPECT_EQ(model.findBrokenInvariant(), nullptr);
  EXPECT_EQ(model.storage().allocate(sizeof(LateElement::Impl) + sizeof(const Class*)), place);
}

TEST(Class, TheFirst127AreInTheTable) {
  EXPECT_EQ(Class::at(1), &document::kdzero::PlainTextNode::Impl::classOf());
  describeManyClasses();
  for (std::uint8_t index = 0; index < 127; ++index) EXPECT_NE(Class::at(index), nullptr) << +index;
  EXPECT_EQ(Class::at(ClassKey::kNotInTable), nullptr);
}

TEST(ClassDeathTest, AFixedKeyThatIsInUseEndsTheProcess) {
  const ClassKey key = document::kdzero::PlainTextNode::Impl::kClassKey;
  EXPECT_DEATH(Class(key, u"test::Second", &Class::modelElement(), 16, nullptr, nullptr),
               "the fixed key 1 of a class of model elements is out of range or in use");
}

TEST(ClassDeathTest, AFixedKeyOutOfRangeEndsTheProcess) {
  EXPECT_DEATH(
      Class({Class::kFixedKeys}, u"test::Fixed", &Class::modelElement(), 16, nullptr, nullptr),
      "the fixed key 2 of a class of model elements is out of range or in use");
}

TEST(PropertyDeathTest, AFixedKeyThatIsInUseEndsTheProcess) {
  const Property::Traits traits{.name = u"property", .many = true};
  EXPECT_DEATH(Property(document::kdzero::keys::kChildren, traits),
               "the fixed key 0 of a property of model elements is out of range or in use");
}

TEST(PropertyDeathTest, AFixedKeyOutOfRangeEndsTheProcess) {
  const Property::Traits traits{.name = u"property", .many = true};
  // The last place of the table is free until there are very many properties.
  constexpr std::uint16_t kLast = Property::kCapacity - 1;
  EXPECT_DEATH(Property({kLast, false}, traits),
               "the fixed key 65535 of a property of model elements is out of range or in use");
}

TEST(Property, CollectionsOfOneTooManyAreRefused) {
  const Property& first = lateParts();
  static std::deque<Property> properties;
  const Property::Traits traits{.name = u"property", .many = true};
  while (properties.size() < Property::kCapacity) properties.emplace_back(traits);
  for (std::size_t index = 0; index < Property::kCapacity; ++index) {
    EXPECT_TRUE(Property::isAt(static_cast<std::uint16_t>(index))) << index;
  }
  EXPECT_EQ(&Property::at(first.getIndex()), &first);

  std::size_t usable = 0;
  for (const Property& property : properties) {
    try {
      const PropertyKey key = property;
      ASSERT_EQ(&Property::at(key.index), &property);
      ++usable;
    } catch (const std::length_error& error) {
      EXPECT_STREQ(error.what(), "a process has at most 65536 properties of model elements");
    }
  }
  EXPECT_LT(usable, Property::kCapacity);
  EXPECT_GT(usable, Property::kCapacity - 100);
  EXPECT_THROW(static_cast<void>(static_cast<PropertyKey>(properties.back())), std::length_error);
}

/// Gives access to the growth of collections, whose end no test can reach.
struct Growth : ReferenceCollection {
  static constexpr std::size_t kLargest = kLargestSize;
  static constexpr std::size_t after(std::size_t capacity) { return capacityAfter(capacity); }
};

TEST(ReferenceCollection, CapacityEndsAtTheLargestSize) {
  EXPECT_EQ(Growth::kLargest, 0xFFFFFFFFu);
  EXPECT_EQ(Growth::after(4), 8u);
  EXPECT_EQ(Growth::after(std::size_t{1} << 31), Growth::kLargest);
  EXPECT_EQ(Growth::after(Growth::kLargest), Growth::kLargest);
}

}  // namespace
