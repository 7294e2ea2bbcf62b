#include "kd/zero/ElementMaker.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/meta/Property.hpp"

namespace {

using kd::zero::ElementMaker;
using kd::zero::Model;
using kd::zero::ModelElement;
using kd::zero::meta::Class;
using kd::zero::meta::Property;

/// Handle to an element whose implementation class has another base before that of all elements.
class Misplaced : public kd::zero::Handle<Misplaced, ModelElement> {
 public:
  class Impl;
};

struct Tag {
  std::uint64_t tag = 1;
};

class Misplaced::Impl final : public Tag, public ModelElement::Impl {
 public:
  static const Class& classOf() noexcept {
    static const Class metaClass =
        ElementMaker::describe<Impl>(u"test::Misplaced", Class::modelElement());
    return metaClass;
  }

 private:
  friend struct ElementMaker;

  Impl() : ModelElement::Impl(classOf()) {}
  ~Impl() = default;
  void releaseAll(ModelElement::DeferredReleases&) noexcept {}
};

/// Handle to an element whose implementation class forgets to release its collection.
class Forgetful : public kd::zero::Handle<Forgetful, ModelElement> {
 public:
  class Impl;
};

class Forgetful::Impl final : public ModelElement::Impl {
 public:
  static const Class& classOf() noexcept {
    static const Class metaClass =
        ElementMaker::describe<Impl>(u"test::Forgetful", Class::modelElement());
    return metaClass;
  }

  kd::zero::ElementSequence<Forgetful> parts;

 private:
  friend struct ElementMaker;

  static const Property& partsProperty() {
    static const Property property({.name = u"parts", .many = true});
    return property;
  }

  Impl() : ModelElement::Impl(classOf()), parts(*this, partsProperty()) {}
  ~Impl() = default;
  void releaseAll(ModelElement::DeferredReleases&) noexcept {}
};

TEST(ElementMaker, RefusesAClassWithAnotherBaseFirst) {
  const Model model = Model::create();
  EXPECT_THROW(ElementMaker::make<Misplaced>(model.storage()), std::logic_error);
  EXPECT_TRUE(model.verify());
}

#ifndef NDEBUG
TEST(ElementMakerDeathTest, FindsACollectionThatIsNotReleased) {
  EXPECT_DEATH(
      {
        const Model model = Model::create();
        const Forgetful owner = ElementMaker::make<Forgetful>(model.storage());
        owner->parts.add(ElementMaker::make<Forgetful>(model.storage()));
      },
      "releaseAll");
}
#endif

}  // namespace
