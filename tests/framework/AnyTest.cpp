#include <gtest/gtest.h>

#include <list>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;
using cppmicroservices::BadAnyCastException;
using cppmicroservices::ref_any_cast;

TEST(AnyValue, EmptyHasNoValue) {
  const Any empty;
  EXPECT_TRUE(empty.Empty());
  EXPECT_EQ(empty.Type(), typeid(void));
  EXPECT_EQ(empty.ToStringNoExcept(), "");
  EXPECT_THROW((void)empty.ToString(), std::logic_error);
}

TEST(AnyValue, StoresAValueWithItsType) {
  Any value = 5;
  EXPECT_FALSE(value.Empty());
  EXPECT_EQ(value.Type(), typeid(int));
  EXPECT_EQ(any_cast<int>(value), 5);
  EXPECT_THROW((void)any_cast<long>(value), BadAnyCastException);
  EXPECT_EQ(any_cast<long>(&value), nullptr);
  *any_cast<int>(&value) = 6;
  EXPECT_EQ(ref_any_cast<int>(value), 6);
  EXPECT_THROW((void)ref_any_cast<long>(value), BadAnyCastException);
  value = 7L;
  EXPECT_EQ(*any_cast<long>(&value), 7);
  EXPECT_EQ(ref_any_cast<long>(value), 7);
}

TEST(AnyValue, CopiesAreIndependent) {
  Any first = std::string("a");
  Any second = first;
  ref_any_cast<std::string>(second) = "b";
  EXPECT_EQ(any_cast<std::string>(first), "a");
  first = second;
  EXPECT_EQ(any_cast<std::string>(first), "b");
  Any& alias = first;
  first = alias;
  EXPECT_EQ(any_cast<std::string>(first), "b");
}

TEST(AnyValue, SwapsAndMoves) {
  Any first = 1;
  Any second = std::string("two");
  first.Swap(second);
  EXPECT_EQ(any_cast<int>(second), 1);
  Any third = std::move(first);
  EXPECT_EQ(any_cast<std::string>(third), "two");
}

TEST(AnyValue, ComparesTypeAndValue) {
  EXPECT_EQ(Any(1), Any(1));
  EXPECT_FALSE(Any(1) == Any(2));
  EXPECT_FALSE(Any(1) == Any(1L));
}

TEST(AnyValue, PrintsItsValue) {
  EXPECT_EQ(Any(1).ToString(), "1");
  EXPECT_EQ(Any(std::string("text")).ToString(), "text");
  EXPECT_EQ(Any(true).ToString(), "1");
  EXPECT_EQ(Any(std::vector<int>{1, 2}).ToString(), "[1,2]");
  EXPECT_EQ(Any(std::list<std::string>{"a"}).ToString(), "[a]");
  EXPECT_EQ(Any(std::set<int>{2, 1}).ToString(), "[1,2]");
  EXPECT_EQ(Any(std::vector<Any>{Any(1), Any(std::string("b"))}).ToString(), "[1,b]");
}

TEST(AnyMapValue, KeyComparisonDependsOnTheTypeOfMap) {
  AnyMap ordered(AnyMap::ORDERED_MAP);
  ordered["Key"] = 1;
  EXPECT_EQ(ordered.count("key"), 0U);
  AnyMap insensitive(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
  insensitive["Key"] = 1;
  EXPECT_EQ(insensitive.count("kEY"), 1U);
  EXPECT_EQ(insensitive.GetType(), AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
}

TEST(AnyMapValue, AddsFindsAndRemoves) {
  AnyMap map(AnyMap::ORDERED_MAP);
  EXPECT_TRUE(map.empty());
  EXPECT_TRUE(map.insert({"a", Any(1)}).second);
  EXPECT_FALSE(map.insert({"a", Any(2)}).second);
  EXPECT_TRUE(map.emplace("b", Any(3)).second);
  EXPECT_EQ(map.size(), 2U);
  EXPECT_EQ(map.at("a"), Any(1));
  EXPECT_THROW((void)map.at("c"), std::out_of_range);
  EXPECT_EQ(map.find("c"), map.cend());
  EXPECT_EQ(map.find("b")->second, Any(3));
  EXPECT_EQ(map.erase("a"), 1U);
  map.clear();
  EXPECT_TRUE(map.empty());
}

TEST(AnyMapValue, CompoundKeyReachesNestedValues) {
  AnyMap inner(AnyMap::ORDERED_MAP);
  inner["list"] = std::vector<Any>{Any(1), Any(std::string("two"))};
  AnyMap outer(AnyMap::ORDERED_MAP);
  outer["inner"] = inner;
  EXPECT_EQ(outer.AtCompoundKey("inner.list.1"), Any(std::string("two")));
  EXPECT_THROW((void)outer.AtCompoundKey("inner.list.7"), std::out_of_range);
  EXPECT_THROW((void)outer.AtCompoundKey("inner.missing"), std::out_of_range);
  EXPECT_EQ(outer.AtCompoundKey("inner.missing", Any(9)), Any(9));
  EXPECT_EQ(outer.AtCompoundKey("inner.list.0", Any(9)), Any(1));
}
