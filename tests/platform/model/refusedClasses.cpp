// Mistakes of authors of classes of elements, each of which must not compile.
// refusedClassesTest.cmake compiles this file once without a macro, which must succeed, and once
// with each.

#include <string_view>

#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/PrimitiveSequence.hpp"

namespace {

using kd::zero::ElementMaker;
using kd::zero::Model;
using kd::zero::ModelElement;
using kd::zero::meta::Class;
using kd::zero::meta::ClassKey;
using kd::zero::meta::Property;

class Base : public kd::zero::Handle<Base, ModelElement> {
 public:
  class Impl;
};

class Base::Impl : public ModelElement::Impl {
 public:
  static const Class& classOf() noexcept {
    static const Class metaClass(u"test::Base", &Class::modelElement());
    return metaClass;
  }

 protected:
  explicit Impl(ClassKey metaClass) : ModelElement::Impl(metaClass) {}
  ~Impl() = default;
  void releaseAll(ModelElement::DeferredReleases&) noexcept {}
};

class Derived : public kd::zero::Handle<Derived, Base> {
 public:
  class Impl;
};

class Derived::Impl final : public Base::Impl {
 public:
#ifndef WITHOUT_CLASS
  static const Class& classOf() noexcept {
    static const Class metaClass =
        ElementMaker::describe<Impl>(u"test::Derived", Base::Impl::classOf());
    return metaClass;
  }
#endif

 private:
  friend struct ElementMaker;

  Impl() : Base::Impl(classOf()) {}
#ifdef VIRTUAL_FUNCTION
  virtual ~Impl() = default;
#else
  ~Impl() = default;
#endif
};

}  // namespace

Derived makeDerived(const Model& model);
Derived makeDerived(const Model& model) {
  return ElementMaker::make<Derived>(model.storage());
}

#ifdef SEQUENCE_OF_BOOL
using Value = bool;
#else
using Value = int;
#endif

const Value& firstOf(const kd::zero::PrimitiveSequence<Value>& values);
const Value& firstOf(const kd::zero::PrimitiveSequence<Value>& values) {
  return values[0];
}
