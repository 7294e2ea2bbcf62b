#include "foundation/json/Value.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/FailingAllocations.hpp"

namespace foundation::json {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kFloatNan = std::numeric_limits<float>::quiet_NaN();

// One value of each kind, in the order of the kinds.
std::vector<Value> oneOfEach() {
  return {Value(),
          Value(Null()),
          Value(true),
          Value(1.0),
          Value("1"),
          Value(Array{Value(1.0)}),
          Value(Object{{"1", Value(1.0)}}),
          Value(1.0F),
          Value(std::int64_t{1}),
          Value(std::uint64_t{1})};
}

TEST(Value, KindsAreInOrder) {
  const std::vector<Value> values = oneOfEach();
  for (std::size_t index = 0; index < values.size(); ++index) {
    EXPECT_EQ(static_cast<std::size_t>(values[index].kind()), index);
  }
}

TEST(Value, NamesOfKindsAreDistinct) {
  std::set<std::string> names;
  for (const Value& value : oneOfEach()) {
    names.insert(nameOf(value.kind()));
  }
  EXPECT_EQ(names.size(), 10U);
  EXPECT_STREQ(nameOf(Kind::kDouble), traits<double>::name);
  EXPECT_STREQ(nameOf(Kind::kUnsigned), traits<std::uint64_t>::name);
}

TEST(Value, StringAccessorThrowsForAllNineOtherKinds) {
  int refused = 0;
  for (const Value& value : oneOfEach()) {
    if (value.is<std::string>()) {
      EXPECT_EQ(value.get<std::string>(), "1");
      continue;
    }
    try {
      value.get<std::string>();
      ADD_FAILURE() << nameOf(value.kind());
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), std::string("invalid conversion: ") + nameOf(value.kind()) + " to " +
                                  traits<std::string>::name);
      ++refused;
    }
  }
  EXPECT_EQ(refused, 9);
}

TEST(Value, ReadingAStringFromTheNumberThreeNamesTheDoubleKind) {
  const Value three(3.0);
  EXPECT_THAT([&] { three.get<std::string>(); },
              testing::ThrowsMessage<std::runtime_error>(
                  testing::StartsWith("invalid conversion: double to ")));
}

TEST(Value, ReadingAStringFromAnAbsentKeyThrows) {
  Object object;
  EXPECT_THAT([&] { object["absent"].get<std::string>(); },
              testing::ThrowsMessage<std::runtime_error>(
                  testing::StartsWith("invalid conversion: undefined to ")));
}

TEST(Value, GetIfReturnsNullForAnotherKind) {
  Value value(2.5);
  EXPECT_EQ(value.getIf<float>(), nullptr);
  *value.getIf<double>() = 3.5;
  EXPECT_EQ(std::as_const(value).get<double>(), 3.5);
  value.get<double>() = 4.5;
  EXPECT_EQ(*std::as_const(value).getIf<double>(), 4.5);
}

TEST(Value, WholeNumbersAndTextsTakeTheKindOfTheirType) {
  EXPECT_EQ(Value(-7).get<std::int64_t>(), -7);
  EXPECT_EQ(Value(7U).get<std::uint64_t>(), 7U);
  EXPECT_EQ(Value(short{-2}).get<std::int64_t>(), -2);
  EXPECT_EQ(Value(static_cast<unsigned char>(2)).get<std::uint64_t>(), 2U);
  EXPECT_EQ(Value(std::string_view("a\0b", 3)).get<std::string>().size(), 3U);
  const char* text = "text";
  EXPECT_EQ(Value(text).get<std::string>(), "text");
}

// None of these may be converted to a boolean or a number implicitly.
static_assert(!std::is_constructible_v<Value, int*>);
static_assert(!std::is_constructible_v<Value, const void*>);
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(!std::is_constructible_v<Value, char>);
static_assert(!std::is_constructible_v<Value, char16_t>);
static_assert(!std::is_constructible_v<Value, const char16_t*>);
static_assert(!std::is_constructible_v<Value, Kind>);
static_assert(!std::is_constructible_v<Value, long double>);
static_assert(std::is_nothrow_move_constructible_v<Value>);
static_assert(std::is_nothrow_move_assignable_v<Value>);

TEST(ValueEquality, KindsCompareStrictly) {
  const std::vector<Value> values = oneOfEach();
  for (std::size_t left = 0; left < values.size(); ++left) {
    for (std::size_t right = 0; right < values.size(); ++right) {
      EXPECT_EQ(values[left] == values[right], left == right) << left << " " << right;
    }
  }
}

TEST(ValueEquality, ANanEqualsANan) {
  EXPECT_EQ(Value(kNan), Value(-kNan));
  EXPECT_EQ(Value(kFloatNan), Value(kFloatNan));
  EXPECT_NE(Value(kNan), Value(0.0));
  EXPECT_NE(Value(0.0F), Value(kFloatNan));
  EXPECT_EQ(Value(Array{Value(kNan)}), Value(Array{Value(kNan)}));
  EXPECT_EQ(Value(kNan).hash(), Value(-kNan).hash());
  EXPECT_EQ(Value(kFloatNan).hash(), Value(-kFloatNan).hash());
}

TEST(ValueEquality, ZerosOfEitherSignAreEqual) {
  EXPECT_EQ(Value(0.0), Value(-0.0));
  EXPECT_EQ(Value(0.0).hash(), Value(-0.0).hash());
  EXPECT_EQ(Value(0.0F).hash(), Value(-0.0F).hash());
}

// Values that each differ from another one in a single element.
std::vector<Value> manyValues() {
  std::vector<Value> values = oneOfEach();
  const Array inner{Value(1), Value("a")};
  for (Value value :
       {Value(Array{}), Value(Object{}), Value(false), Value(""), Value(2), Value(2U), Value(2.5),
        Value(2.5F), Value(Array{Value(inner)}), Value(Array{Value(inner), Value(1)}),
        Value(Array{Value(1), Value(inner)}), Value(Array{Value(Array{})}),
        Value(Array{Value(Object{})}), Value(Object{{"k", Value(inner)}}),
        Value(Object{{"l", Value(inner)}}), Value(Object{{"k", Value(inner)}, {"l", Value(1)}}),
        Value(Object{{"k", Value(Array{Value(1), Value("b")})}})}) {
    values.push_back(std::move(value));
  }
  return values;
}

TEST(ValueEquality, EveryDifferenceCounts) {
  const std::vector<Value> values = manyValues();
  for (std::size_t left = 0; left < values.size(); ++left) {
    for (std::size_t right = 0; right < values.size(); ++right) {
      EXPECT_EQ(values[left] == values[right], left == right) << left << " " << right;
    }
  }
}

TEST(ValueHash, IsEqualForCopiesAndDiffersBetweenValues) {
  std::set<std::size_t> hashes;
  for (const Value& value : manyValues()) {
    const Value copy(value);
    EXPECT_EQ(std::hash<Value>()(copy), value.hash());
    hashes.insert(value.hash());
  }
  EXPECT_EQ(hashes.size(), manyValues().size());
}

TEST(ValueHash, DependsOnWhereElementsEnd) {
  const auto pair = [](Array first, Array second) {
    return Value(Array{Value(std::move(first)), Value(std::move(second))});
  };
  const Value oneAndTwo = pair({Value(1)}, {Value(3), Value(2)});
  const Value twoAndOne = pair({Value(2), Value(1)}, {Value(3)});
  EXPECT_NE(oneAndTwo.hash(), twoAndOne.hash());
}

TEST(ValueSwap, ExchangesTwoValues) {
  Value left("text");
  Value right(Array{Value(1)});
  swap(left, right);
  EXPECT_EQ(left, Value(Array{Value(1)}));
  EXPECT_EQ(right, Value("text"));
}

TEST(ValueCopy, IsDeep) {
  Value original(Object{{"list", Value(Array{Value("a"), Value(Array{Value(1)})})}});
  const Value copy(original);
  original.get<Object>()["list"].get<Array>()[1].get<Array>()[0] = Value(2);
  EXPECT_EQ(copy, Value(Object{{"list", Value(Array{Value("a"), Value(Array{Value(1)})})}}));
}

TEST(ValueMove, LeavesTheUndefinedKind) {
  Value from("text");
  const Value to(std::move(from));
  EXPECT_EQ(to.get<std::string>(), "text");
  EXPECT_TRUE(from.is<Undefined>());  // NOLINT(bugprone-use-after-move): this is the promise
}

TEST(ValueAssignment, FromItselfAndSwapWithItselfKeepTheValue) {
  Value value(Array{Value("a")});
  const Value expected(value);
  Value& same = value;
  value = same;
  EXPECT_EQ(value, expected);
  value = std::move(same);
  EXPECT_EQ(value, expected);
  swap(value, same);
  EXPECT_EQ(value, expected);
}

TEST(ValueAssignment, FromItsOwnChildGivesTheChild) {
  Value copied(Array{Value(Array{Value("a")}), Value(1)});
  copied = copied.get<Array>()[0];
  EXPECT_EQ(copied, Value(Array{Value("a")}));
  Value moved(Object{{"k", Value(Array{Value("a")})}});
  moved = std::move(moved.get<Object>()["k"]);
  EXPECT_EQ(moved, Value(Array{Value("a")}));
}

// Alternating arrays and objects, each with elements before and after the nested one.
Value deepValue(int depth) {
  Value value("bottom");
  for (int level = 0; level < depth; ++level) {
    if (level % 2 == 0) {
      Array array;
      array.emplace_back(Array{Value(level)});
      array.push_back(std::move(value));
      array.emplace_back(Array{Value(level), Value(Object{{"x", Value(1)}})});
      value = Value(std::move(array));
    } else {
      Object object;
      object["a"] = Value(Array{Value(level)});
      object["m"] = std::move(value);
      object["z"] = Value(Object{{"x", Value(Array{Value(1)})}});
      value = Value(std::move(object));
    }
  }
  return value;
}

TEST(DeepValue, IsCopiedComparedHashedAndDestroyedWithoutRecursion) {
  const Value original = deepValue(100'000);
  Value copy(original);
  EXPECT_TRUE(copy == original);
  EXPECT_EQ(copy.hash(), original.hash());
  copy = Value();
  EXPECT_FALSE(copy == original);
}

// Where a level contains the next one.
enum class Position : std::uint8_t { kFirst, kLast, kInTurn };

// Each level has `extra` further elements.
Value arrayChain(int depth, std::size_t extra, Position position) {
  Value value(1);
  for (int level = 0; level < depth; ++level) {
    Array array(extra, Value(level));
    const bool first =
        position == Position::kFirst || (position == Position::kInTurn && level % 2 == 0);
    array.insert(first ? array.begin() : array.end(), std::move(value));
    value = Value(std::move(array));
  }
  return value;
}

Value objectChain(int depth, std::size_t extra, Position position) {
  constexpr std::array<const char*, 3> kExtraKeys{"l", "m", "n"};
  Value value(1);
  for (int level = 0; level < depth; ++level) {
    Object object;
    for (std::size_t i = 0; i < extra; ++i) object.emplace(kExtraKeys.at(i), Value(level));
    const bool first =
        position == Position::kFirst || (position == Position::kInTurn && level % 2 == 0);
    object.emplace(first ? "a" : "z", std::move(value));
    value = Value(std::move(object));
  }
  return value;
}

// Chains with zero or more further elements per level, before or after the nested one.
TEST(DeepValue, ChainsOfEveryShapeAreDestroyedWithoutRecursion) {
  // Deep enough that even the smallest stack frame per level would overflow the stack.
  constexpr int kDepth = 300'000;
  Value value;
  for (const std::size_t extra : {0U, 1U, 3U}) {
    for (const Position position : {Position::kFirst, Position::kLast}) {
      value = arrayChain(kDepth, extra, position);
      EXPECT_EQ(value.get<Array>().size(), extra + 1);
    }
  }
  value = arrayChain(kDepth, 1, Position::kInTurn);
  EXPECT_EQ(value.get<Array>().size(), 2U);
  for (const std::size_t extra : {0U, 1U}) {
    value = objectChain(kDepth, extra, Position::kInTurn);
    EXPECT_EQ(value.get<Object>().size(), extra + 1);
  }
}

TEST(DeepValue, IsDestroyedWithoutAllocating) {
  std::size_t before = 0;
  {
    const Value value = deepValue(1000);
    before = quenlith::test::allocationCount();
  }
  EXPECT_EQ(quenlith::test::allocationCount(), before);
}

TEST(Value, FailingAllocationsLeaveTheTargetUnchanged) {
  const Value original = deepValue(20);
  const Value expected("before");
  Value target("before");
  const auto failed = quenlith::test::failEachAllocation([&] { target = original; },
                                                         [&] { EXPECT_EQ(target, expected); });
  EXPECT_GT(failed, 20U);
  EXPECT_EQ(target, original);
}

TEST(Value, ComparingAndHashingReportExhaustedMemory) {
  const Value original = deepValue(20);
  const Value copy(original);
  const auto nothing = [] {};
  EXPECT_GT(quenlith::test::failEachAllocation([&] { EXPECT_TRUE(original == copy); }, nothing),
            0U);
  EXPECT_GT(quenlith::test::failEachAllocation([&] { original.hash(); }, nothing), 0U);
}

}  // namespace
}  // namespace foundation::json
