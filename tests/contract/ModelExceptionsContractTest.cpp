#include <exception>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <boost/uuid/uuid.hpp>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/core/except/Exception.hpp"
#include "foundation/core/except/IException.hpp"
#include "foundation/core/except/IMsgIDException.hpp"
#include "foundation/core/except/IUserException.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Type.hpp"
#include "kd0/messages/CannotCastIncompatibleTypes.hpp"

namespace {

using fl::i18n::ustring;
using foundation::core::except::IException;
using foundation::core::except::IMsgIDException;
using foundation::core::except::IUserException;
using kd0::messages::CannotCastIncompatibleTypes;
using Incompatible =
    foundation::core::except::Exception<CannotCastIncompatibleTypes, std::exception>;

static_assert(std::is_base_of_v<std::exception, Incompatible>);
static_assert(std::is_base_of_v<IMsgIDException, Incompatible>);
static_assert(std::is_base_of_v<IUserException, Incompatible>);
static_assert(std::is_base_of_v<IException, Incompatible>);

// A type of plain values.
const kd::zero::meta::Type::Impl kText(u"test.Text");

TEST(ModelExceptionsContract, AValueThatIsNotAModelElementCannotBeUsedAsOne) {
  const kd::zero::Value value(kText);
  try {
    static_cast<void>(value.toModelElement());
    FAIL() << "a text was used as a model element";
  } catch (const Incompatible& error) {
    const ustring name = value.getType()->getQualifiedName();
    EXPECT_EQ(name, u"test.Text");
    EXPECT_NE(error.GetUnicodeMessageTxt().find(name), ustring::npos);
    EXPECT_EQ(fl::i18n::utf8_to_ustring(error.what()), error.GetUnicodeMessageTxt());
    EXPECT_EQ(error.getCatalog(), "kd0:messages");
    EXPECT_EQ(error.getKey(), "CannotCastIncompatibleTypes");
  }
}

TEST(ModelExceptionsContract, TheErrorIsCaughtAsEachOfItsBases) {
  const kd::zero::Value value(kText);
  EXPECT_THROW(static_cast<void>(value.toModelElement()), std::exception);
  EXPECT_THROW(static_cast<void>(value.toModelElement()), IException);
  EXPECT_THROW(static_cast<void>(value.toModelElement()), IUserException);
  EXPECT_THROW(static_cast<void>(value.toModelElement()), IMsgIDException);
}

TEST(ModelExceptionsContract, AModelElementIsReadBackFromItsValue) {
  document::kdzero::TesseraDocument document;
  const kd::zero::ModelElement line =
      document::kdzero::LineNode::Builder(document.getModel()).createLineNode(boost::uuids::uuid{});
  const kd::zero::Value value(line.get());
  EXPECT_EQ(value.toModelElement(), line.get());
}

}  // namespace
