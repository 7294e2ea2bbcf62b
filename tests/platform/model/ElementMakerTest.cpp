#include "kd/zero/ElementMaker.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

#include "kd/zero/Model.hpp"

namespace {

using kd::zero::ElementMaker;
using kd::zero::Model;
using kd::zero::ModelElement;
using kd::zero::meta::Class;

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

TEST(ElementMaker, RefusesAClassWithAnotherBaseFirst) {
  const Model model = Model::create();
  EXPECT_THROW(ElementMaker::make<Misplaced>(model.storage()), std::logic_error);
  EXPECT_TRUE(model.verify());
}

}  // namespace
