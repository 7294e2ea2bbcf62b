#include "foundation/json/Number.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace {

using foundation::json::Number;
using foundation::json::parseNumber;

struct Case {
  std::u16string_view literal;
  std::optional<Number> value;
};

TEST(ParseNumber, GivesTheNarrowestTypeOfALiteral) {
  const Case cases[] = {
      {u"0", std::int64_t{0}},
      {u"-12", std::int64_t{-12}},
      {u"9223372036854775808", std::uint64_t{1} << 63U},
      {u"18446744073709551616", 18446744073709551616.0},
      {u"1.5", 1.5},
      {u"2e1", 20.0},
      {u"1e-999", 0.0},
      {u"1e999", std::nullopt},
  };
  for (const Case& each : cases) EXPECT_EQ(parseNumber(each.literal), each.value);
}

}  // namespace
