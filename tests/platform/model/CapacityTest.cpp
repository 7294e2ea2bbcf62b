#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "kd/zero/meta/Class.hpp"
#include "kd/zero/meta/Property.hpp"

namespace {

using kd::zero::meta::Class;
using kd::zero::meta::Property;

// Descriptions live as long as the process, so this is a program of its own.

TEST(Class, MoreThanAProcessHoldsAreRefused) {
  static std::vector<std::unique_ptr<Class>> classes;
  const auto add = [] {
    classes.push_back(std::make_unique<Class>(u"test::Class", &Class::modelElement(), 8, nullptr));
  };
  // The classes of the model library are there already.
  do {
    ASSERT_NO_THROW(add());
    ASSERT_EQ(&Class::at(classes.back()->getIndex()), classes.back().get());
  } while (classes.back()->getIndex() + 1U < Class::kCapacity);
  EXPECT_THROW(add(), std::length_error);
  EXPECT_THROW(add(), std::length_error);
  EXPECT_EQ(&Class::at(127), classes.back().get());
}

TEST(Property, MoreThanAProcessHoldsAreRefused) {
  static std::vector<std::unique_ptr<Property>> properties;
  const auto add = [] {
    properties.push_back(std::make_unique<Property>(Property::Traits{.name = u"property"}));
  };
  do {
    ASSERT_NO_THROW(add());
    ASSERT_EQ(&Property::at(properties.back()->getIndex()), properties.back().get());
  } while (properties.back()->getIndex() + 1U < Property::kCapacity);
  EXPECT_THROW(add(), std::length_error);
  EXPECT_EQ(&Property::at(1023), properties.back().get());
}

}  // namespace
