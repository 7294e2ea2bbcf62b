#include "foundation/core/except/Exception.hpp"

#include <gtest/gtest.h>

#include <exception>

#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Class.hpp"
#include "kd0/messages/CannotCastIncompatibleTypes.hpp"
#include "platform/model/Box.hpp"

namespace {

using foundation::core::except::Exception;
using foundation::core::except::IException;
using foundation::core::except::IMsgIDException;
using foundation::core::except::IUserException;
using kd::zero::Value;
using kd::zero::meta::Class;
using kd::zero::meta::Type;
using kd0::messages::CannotCastIncompatibleTypes;
using quenlith::test::Box;
using quenlith::test::makeBox;

using CannotCast = Exception<CannotCastIncompatibleTypes, std::exception>;

const Type::Impl& weight() {
  static const Type::Impl type(u"shop::Gewicht\u00FC");
  return type;
}

/// Throws it out of the model library.
void castAWeight() {
  Value(weight()).toModelElement();
}

TEST(CannotCastIncompatibleTypes, HasACatalogAKeyAndTheTypeAsItsArgument) {
  try {
    castAWeight();
    FAIL() << "it was cast";
  } catch (const CannotCast& failure) {
    EXPECT_EQ(failure.getCatalog(), "kd0:messages");
    EXPECT_EQ(failure.getKey(), "CannotCastIncompatibleTypes");
    ASSERT_EQ(failure.getMessage().getArguments().size(), 1u);
    EXPECT_EQ(failure.getMessage().getArguments()[0], u"shop::Gewicht\u00FC");
  }
}

TEST(CannotCastIncompatibleTypes, TellsItsMessageInBothForms) {
  try {
    castAWeight();
    FAIL() << "it was cast";
  } catch (const CannotCast& failure) {
    EXPECT_STREQ(failure.what(),
                 "A value of type shop::Gewicht\xC3\xBC cannot be used as a model element.");
    EXPECT_EQ(failure.GetUnicodeMessageTxt(),
              u"A value of type shop::Gewicht\u00FC cannot be used as a model element.");
  }
}

TEST(CannotCastIncompatibleTypes, CanBeCaughtAsEachOfItsBases) {
  EXPECT_THROW(castAWeight(), IMsgIDException);
  EXPECT_THROW(castAWeight(), IUserException);
  EXPECT_THROW(castAWeight(), IException);
  EXPECT_THROW(castAWeight(), std::exception);
}

TEST(CannotCastIncompatibleTypes, TellsTheSameThroughEachOfItsBases) {
  try {
    castAWeight();
    FAIL() << "it was cast";
  } catch (const IException& failure) {
    EXPECT_EQ(failure.GetUnicodeMessageTxt().substr(0, 7), u"A value");
    EXPECT_STREQ(dynamic_cast<const std::exception&>(failure).what(),
                 "A value of type shop::Gewicht\xC3\xBC cannot be used as a model element.");
  }
}

TEST(CannotCastIncompatibleTypes, IsCopiedWithItsMessage) {
  const CannotCast original{CannotCastIncompatibleTypes(u"T")};
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is meant
  const CannotCast copy(original);
  EXPECT_STREQ(copy.what(), original.what());
  EXPECT_NE(copy.what(), original.what());
}

TEST(Value, OfAReferenceIsTheElement) {
  const Box box = makeBox(kd::zero::Model::create());
  const Value value(box.get());
  EXPECT_EQ(value.toModelElement(), box.get());
  EXPECT_EQ(value.getType(), Type(Box::Impl::classOf()));
}

TEST(Value, OfAnEmptyReferenceIsNull) {
  const Value value(nullptr);
  EXPECT_EQ(value.toModelElement(), nullptr);
  EXPECT_EQ(value.getType()->getQualifiedName(), u"kd::zero::ModelElement");
}

TEST(Value, OfAnotherTypeTellsThatType) {
  EXPECT_EQ(Value(weight()).getType().get(), &weight());
}

TEST(Type, ConformsToItselfAndToWhatItIsDerivedFrom) {
  static const Type::Impl animal(u"Animal");
  static const Type::Impl dog(u"Dog", &animal);
  static const Type::Impl poodle(u"Poodle", &dog);
  EXPECT_TRUE(poodle.conformsTo(poodle));
  EXPECT_TRUE(poodle.conformsTo(animal));
  EXPECT_FALSE(animal.conformsTo(poodle));
  EXPECT_FALSE(dog.conformsTo(weight()));
  EXPECT_TRUE(Box::Impl::classOf().conformsTo(Class::modelElement()));
}

}  // namespace
