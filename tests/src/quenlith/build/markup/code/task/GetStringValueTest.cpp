#include "quenlith/build/markup/code/task/getStringValue.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace {

using foundation::json::Null;
using foundation::json::Undefined;
using foundation::json::Value;
using quenlith::build::markup::code::getStringValue;

TEST(GetStringValue, TakesStringsOnly) {
  const std::map<std::string, Value> data{
      {"string", Value("true")},
      {"empty", Value("")},
      {"undefined", Value(Undefined())},
      {"null", Value(Null())},
      {"boolean", Value(true)},
      {"double", Value(1.5)},
      {"float", Value(1.5F)},
      {"signed", Value(std::int64_t{1})},
      {"unsigned", Value(std::uint64_t{1})},
      {"array", Value(std::vector<Value>{Value("text")})},
      {"object", Value(std::map<std::string, Value>{{"text", Value("text")}})},
  };
  for (const auto& [key, value] : data) {
    EXPECT_EQ(getStringValue(data, key), key == "string" ? u"true" : u"") << key;
  }
  EXPECT_EQ(getStringValue(data, "absent"), u"");
  EXPECT_EQ(getStringValue({}, ""), u"");
}

TEST(GetStringValue, ConvertsFromUtf8) {
  const std::map<std::string, Value> data{{"text", Value("\xC3\xBC \xF0\x9F\x98\x80")}};
  EXPECT_EQ(getStringValue(data, "text"), u"\u00FC \U0001F600");
}

}  // namespace
