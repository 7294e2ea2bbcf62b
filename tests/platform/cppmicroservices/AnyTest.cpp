#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>
#include <gtest/gtest.h>

#include <list>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;
using cppmicroservices::BadAnyCastException;
using cppmicroservices::ref_any_cast;
using namespace std::string_literals;

struct Opaque {
  int number = 0;
};

std::ostream& operator<<(std::ostream& os, const Opaque& value) {
  return os << value.number;
}

TEST(Any, CopiesAndMoves) {
  Any value(std::vector<int>{1, 2});
  Any copy(value);
  ref_any_cast<std::vector<int>>(value).push_back(3);
  EXPECT_EQ(ref_any_cast<std::vector<int>>(copy).size(), 2U);
  const Any emptyCopy{Any()};
  EXPECT_TRUE(emptyCopy.Empty());
  copy = value;
  EXPECT_EQ(any_cast<std::vector<int>>(copy).size(), 3U);
  const Any& self = copy;
  copy = self;
  EXPECT_EQ(any_cast<std::vector<int>>(copy).size(), 3U);
  copy = 5;
  EXPECT_EQ(any_cast<int>(copy), 5);
  const Any moved(std::move(copy));
  EXPECT_EQ(any_cast<int>(moved), 5);
}

TEST(Any, CastToAnotherTypeFails) {
  Any value(1);
  const Any& constant = value;
  EXPECT_EQ(any_cast<long>(&value), nullptr);
  EXPECT_EQ(any_cast<long>(&constant), nullptr);
  EXPECT_EQ(any_cast<int>(static_cast<Any*>(nullptr)), nullptr);
  EXPECT_EQ(*any_cast<int>(&value), 1);
  EXPECT_EQ(*any_cast<int>(&constant), 1);
  EXPECT_THROW(any_cast<long>(value), BadAnyCastException);
  EXPECT_THROW(ref_any_cast<long>(value), BadAnyCastException);
  EXPECT_THROW(ref_any_cast<long>(constant), BadAnyCastException);
  EXPECT_THROW(any_cast<int>(Any()), std::bad_cast);
  try {
    any_cast<int>(Any(1.5));
    FAIL();
  } catch (const BadAnyCastException& exception) {
    EXPECT_NE(std::string(exception.what()).find("double"), std::string::npos);
    EXPECT_NE(std::string(exception.what()).find("int"), std::string::npos);
  }
}

TEST(Any, ValuesThatCannotBeComparedAreNotEqual) {
  EXPECT_FALSE(Any(Opaque{1}) == Any(Opaque{1}));
}

TEST(Any, EmptyOnesAreEqual) {
  EXPECT_TRUE(Any() == Any());
  EXPECT_FALSE(Any() == Any(0));
}

TEST(Any, ToStringReturnsTheValue) {
  EXPECT_EQ(Any("x"s).ToString(), "x");
  EXPECT_EQ(Any(true).ToString(), "1");
  EXPECT_EQ(Any(1.5).ToString(), "1.5");
  EXPECT_EQ(Any(0.25F).ToString(), "0.25");
  EXPECT_EQ(Any(1.0 / 3).ToString(), "0.333333333333");
  EXPECT_EQ(Any(Opaque{7}).ToString(), "7");
  EXPECT_EQ(Any(std::vector<int>{}).ToString(), "[]");
  EXPECT_EQ(Any(std::vector<int>{1, 2}).ToString(), "[1,2]");
  EXPECT_EQ(Any(std::list<int>{1}).ToString(), "[1]");
  EXPECT_EQ(Any(std::set<std::string>{"a", "b"}).ToString(), "[a,b]");
  EXPECT_EQ(Any(std::vector<Any>{Any(1), Any("q"s)}).ToString(), "[1,q]");
  EXPECT_EQ(Any().ToStringNoExcept(), "");
  EXPECT_THROW(Any().ToString(), std::logic_error);
}

TEST(AnyMap, MapsAreConvertedToText) {
  EXPECT_EQ(Any(AnyMap(AnyMap::ORDERED_MAP, {{"a", Any(1)}, {"b", Any("x"s)}})).ToString(),
            "{a : 1, b : x}");
  EXPECT_EQ(Any(AnyMap()).ToString(), "{}");
}

TEST(AnyMap, IsAContainer) {
  AnyMap map(AnyMap::ORDERED_MAP, {{"b", Any(2)}, {"a", Any(1)}});
  EXPECT_EQ(map.GetType(), AnyMap::ORDERED_MAP);
  std::string keys;
  for (const auto& entry : map) keys += entry.first;
  EXPECT_EQ(keys, "ab");
  EXPECT_EQ(any_cast<int>(map.at("a")), 1);
  EXPECT_THROW(map.at("c"), std::out_of_range);
  const AnyMap& constant = map;
  EXPECT_THROW(constant.at("c"), std::out_of_range);
  EXPECT_TRUE(constant.find("c") == constant.end());
  EXPECT_EQ(any_cast<int>(constant.find("b")->second), 2);
  EXPECT_EQ(std::distance(constant.cbegin(), constant.cend()), 2);
  EXPECT_FALSE(map.insert({"a", Any(3)}).second);
  EXPECT_TRUE(map.emplace("c", Any(3)).second);
  EXPECT_EQ(map.erase("c"), 1U);
  EXPECT_EQ(map.erase("c"), 0U);
  for (auto& entry : map) entry.second = 9;
  EXPECT_EQ(any_cast<int>(map.at("b")), 9);
  map.clear();
  EXPECT_TRUE(map.empty());
}

TEST(AnyMap, IsConstructedFromStandardMaps) {
  const AnyMap ordered(AnyMap::ordered_any_map{{"a", Any(1)}});
  const AnyMap unordered(AnyMap::unordered_any_map{{"a", Any(1)}});
  EXPECT_EQ(ordered.GetType(), AnyMap::ORDERED_MAP);
  EXPECT_EQ(unordered.GetType(), AnyMap::UNORDERED_MAP);
  EXPECT_TRUE(ordered == AnyMap(AnyMap::ORDERED_MAP, {{"a", Any(1)}}));
  EXPECT_FALSE(ordered == AnyMap(AnyMap::ORDERED_MAP, {{"a", Any(2)}}));
  EXPECT_FALSE(ordered == AnyMap(AnyMap::ORDERED_MAP, {{"b", Any(1)}}));
  EXPECT_FALSE(ordered == AnyMap(AnyMap::ORDERED_MAP));
}

TEST(AnyMap, CompoundKeyReachesNestedValues) {
  const AnyMap map{{"one", Any(1)},
                   {"list", Any(std::vector<Any>{Any(3), Any(8)})},
                   {"map", Any(AnyMap{{"a", Any("anton"s)}})}};
  EXPECT_EQ(any_cast<int>(map.AtCompoundKey("one")), 1);
  EXPECT_EQ(any_cast<int>(map.AtCompoundKey("list.1")), 8);
  EXPECT_EQ(any_cast<std::string>(map.AtCompoundKey("map.a")), "anton");
  EXPECT_THROW(map.AtCompoundKey("two"), std::out_of_range);
  EXPECT_THROW(map.AtCompoundKey("map.b"), std::out_of_range);
  EXPECT_THROW(map.AtCompoundKey("list.2"), std::out_of_range);
  EXPECT_THROW(map.AtCompoundKey("list.99999999999999999999"), std::out_of_range);
  EXPECT_THROW(map.AtCompoundKey("list.x"), std::invalid_argument);
  EXPECT_THROW(map.AtCompoundKey("list.1x"), std::invalid_argument);
  EXPECT_THROW(map.AtCompoundKey("one.x"), std::invalid_argument);
  EXPECT_EQ(any_cast<int>(map.AtCompoundKey("list.0", Any(5))), 3);
  EXPECT_EQ(any_cast<int>(map.AtCompoundKey("list.7", Any(5))), 5);
}

}  // namespace
