#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/json/Value.hpp"

namespace {

using foundation::json::Null;
using foundation::json::traits;
using foundation::json::Undefined;
using foundation::json::Value;
using Array = std::vector<Value>;
using Object = std::map<std::string, Value>;

/// One value of each kind, with the name that the kind publishes.
struct KindCase {
  std::string name;
  Value value;
};

std::vector<KindCase> valuesOfEveryKind() {
  return {{traits<Undefined>::name, Value(Undefined())},
          {traits<Null>::name, Value(Null())},
          {traits<bool>::name, Value(true)},
          {traits<double>::name, Value(3.0)},
          {traits<std::string>::name, Value(std::string("three"))},
          {traits<Array>::name, Value(Array{Value(1.0)})},
          {traits<Object>::name, Value(Object{{"key", Value(1.0)}})},
          {traits<float>::name, Value(3.0F)},
          {traits<std::int64_t>::name, Value(std::int64_t{-3})},
          {traits<std::uint64_t>::name, Value(std::uint64_t{3})}};
}

TEST(JsonValueContract, TheTenKindsHaveDistinctNames) {
  std::set<std::string> names;
  for (const KindCase& kind : valuesOfEveryKind()) names.insert(kind.name);
  EXPECT_EQ(names.size(), 10U);
}

TEST(JsonValueContract, AStringIsReadByReference) {
  const Value value(std::string("text"));
  const std::string& text = value.get<std::string>();
  EXPECT_EQ(text, "text");
  EXPECT_EQ(&text, &value.get<std::string>());
}

TEST(JsonValueContract, ReadingAStringFromAnyOtherKindNamesBothKinds) {
  const std::string string = traits<std::string>::name;
  for (const KindCase& kind : valuesOfEveryKind()) {
    if (kind.name == string) continue;
    try {
      static_cast<void>(kind.value.get<std::string>());
      ADD_FAILURE() << "a string was read from the kind " << kind.name;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), "invalid conversion: " + kind.name + " to " + string);
    }
  }
}

TEST(JsonValueContract, ADefaultConstructedValueIsUndefined) {
  Object object;
  const Value& absent = object["absent"];
  try {
    static_cast<void>(absent.get<std::string>());
    FAIL() << "a string was read from an undefined value";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), std::string("invalid conversion: ") + traits<Undefined>::name + " to " +
                                traits<std::string>::name);
  }
}

TEST(JsonValueContract, ACopyIsIndependentOfItsOriginal) {
  Value original(std::string("before"));
  const Value copy(original);
  original = Value(2.0);
  EXPECT_EQ(copy.get<std::string>(), "before");
  EXPECT_THROW(static_cast<void>(original.get<std::string>()), std::runtime_error);
}

TEST(JsonValueContract, AnArrayOfTwoNumbersIsOneValue) {
  const Array range{Value(7.0), Value(3.0)};
  const Value position(range);
  ASSERT_EQ(position.get<Array>().size(), 2U);
  EXPECT_EQ(position.get<Array>()[0].get<double>(), 7.0);
  EXPECT_EQ(position.get<Array>()[1].get<double>(), 3.0);
}

}  // namespace
