#include "foundation/json/Writer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace foundation::json {
namespace {

void writeSample(Writer& writer) {
  writer.beginObject();
  writer.key("list");
  writer.beginArray();
  writer.number(std::int64_t{-1});
  writer.number(std::uint64_t{1});
  writer.number(1.0);
  writer.number(0.5F);
  writer.boolean(true);
  writer.boolean(false);
  writer.null();
  writer.endArray();
  writer.key("k\x7F");
  writer.text(u"\u00E9");
  writer.key("empty");
  writer.beginArray();
  writer.endArray();
  writer.key("none");
  writer.beginObject();
  writer.endObject();
  writer.key("value");
  writer.value(Value(Object{{"a", Value("\x7F")}, {"b", Value(Array{Value(2)})}}));
  writer.endObject();
}

std::string written(const Value& value, Form form) {
  std::string output;
  Writer(output, form).value(value);
  return output;
}

std::string sample(Form form) {
  std::string output;
  Writer writer(output, form);
  writeSample(writer);
  return output;
}

TEST(Writer, CompactHasNoSpaces) {
  EXPECT_EQ(sample(Form::kCompact),
            "{\"list\":[-1,1,1,0.5,true,false,null],\"k\\u007f\":\"\xC3\xA9\",\"empty\":[],"
            "\"none\":{},\"value\":{\"a\":\"\\u007f\",\"b\":[2]}}");
}

TEST(Writer, CanonicalHasItsOwnFormatOfDoublesAndTexts) {
  EXPECT_EQ(sample(Form::kCanonical),
            "{\"list\":[-1,1,1.0,0.5,true,false,null],\"k\x7F\":\"\xC3\xA9\",\"empty\":[],"
            "\"none\":{},\"value\":{\"a\":\"\x7F\",\"b\":[2]}}");
}

TEST(Writer, IndentedHasTwoSpacesPerLevel) {
  EXPECT_EQ(sample(Form::kIndented), R"({
  "list": [
    -1,
    1,
    1,
    0.5,
    true,
    false,
    null
  ],
  "k\u007f": "é",
  "empty": [],
  "none": {},
  "value": {
    "a": "\u007f",
    "b": [
      2
    ]
  }
})");
}

TEST(Writer, RawTextIsWrittenLikeAnyValue) {
  std::string output;
  Writer writer(output, Form::kIndented);
  writer.beginArray();
  writer.raw("{}");
  writer.raw("[1");
  output += "]";
  writer.endArray();
  EXPECT_EQ(output, "[\n  {},\n  [1]\n]");
}

TEST(Writer, ValuesAtTheTopFollowOneAnother) {
  std::string output;
  Writer writer(output, Form::kCompact);
  writer.value(Value(1));
  output += "\n";
  writer.beginObject();
  writer.endObject();
  output += "\n";
  writer.object({{"a", Value(1)}});
  EXPECT_EQ(output, "1\n{}\n{\"a\":1}");
}

TEST(Writer, TheCallerMayClearTheStringBetweenValues) {
  std::string output;
  Writer writer(output, Form::kCompact);
  writer.beginArray();
  writer.null();
  output.clear();
  writer.null();
  writer.endArray();
  EXPECT_EQ(output, ",null]");
}

TEST(Writer, CanonicalObjectHasNoSpacesAndAscendingKeys) {
  const Value object(Object{{"b", Value(1.0)},
                            {"a", Value("\x7F")},
                            {"B", Value(Array{Value(1), Value(2U), Value(true), Value(Null())})},
                            {"\xC3\xA9", Value(Object())}});
  EXPECT_EQ(written(object, Form::kCanonical),
            "{\"B\":[1,2,true,null],\"a\":\"\x7F\",\"b\":1.0,\"\xC3\xA9\":{}}");
}

TEST(Writer, WritesEveryKind) {
  const Value value(Array{Value(), Value(Null()), Value(false), Value(1.0), Value("\x7F"),
                          Value(Array()), Value(Object{{"k\n", Value(0.5F)}}), Value(-1),
                          Value(1U)});
  EXPECT_EQ(written(value, Form::kCompact),
            "[null,null,false,1,\"\\u007f\",[],{\"k\\n\":0.5},-1,1]");
}

TEST(Writer, DeepValuesAreWrittenWithoutRecursion) {
  Value value;
  for (int level = 0; level < 100'000; ++level) {
    Array array;
    array.push_back(std::move(value));
    value = Value(std::move(array));
  }
  EXPECT_EQ(written(value, Form::kCompact),
            std::string(100'000, '[') + "null" + std::string(100'000, ']'));
}

}  // namespace
TEST(Writer, OmitsMembersWhoseValueIsEmpty) {
  std::string output;
  Writer json(output, Form::kCompact, foundation::json::EmptyMembers::kOmitted);
  const auto writeEmpty = [&json] {
    json.key("text");
    json.text(std::u16string_view());
    json.key("utf8");
    json.text(std::string_view());
    json.key("double");
    json.number(0.0);
    json.key("float");
    json.number(-0.0F);
    json.key("signed");
    json.number(std::int64_t{0});
    json.key("unsigned");
    json.number(std::uint64_t{0});
    json.key("false");
    json.boolean(false);
    json.key("null");
    json.null();
    json.key("object");
    json.object({});
    json.key("array");
    json.beginArray();
    json.endArray();
  };
  json.beginObject();
  writeEmpty();
  json.key("a");
  json.number(std::uint64_t{1});
  writeEmpty();
  // What contains nothing but empty members is empty.
  json.key("nested");
  json.beginObject();
  writeEmpty();
  json.key("deeper");
  json.beginObject();
  writeEmpty();
  json.endObject();
  json.endObject();
  json.key("b");
  json.beginObject();
  writeEmpty();
  json.key("c");
  json.boolean(true);
  json.endObject();
  // Elements stay, also empty ones.
  json.key("d");
  json.beginArray();
  json.text(std::string_view());
  json.number(std::uint64_t{0});
  json.null();
  json.beginObject();
  writeEmpty();
  json.endObject();
  json.beginArray();
  json.endArray();
  json.endArray();
  // A value is written with everything in it.
  json.key("e");
  json.object({{"empty", Value("")}, {"list", Value(foundation::json::Array{})}});
  writeEmpty();
  json.endObject();
  EXPECT_EQ(output, R"({"a":1,"b":{"c":true},"d":["",0,null,{},[]],"e":{"empty":"","list":[]}})");
}

TEST(Writer, WritesEmptyMembersUnlessToldOtherwise) {
  std::string output;
  Writer json(output, Form::kCompact);
  json.beginObject();
  json.key("a");
  json.text("");
  json.key("b");
  json.number(0.0);
  json.key("c");
  json.null();
  json.key("d");
  json.object({});
  json.endObject();
  EXPECT_EQ(output, R"({"a":"","b":0,"c":null,"d":{}})");
}

TEST(Writer, OmitsNothingWithinAValueAndGoesOnAfterIt) {
  std::string output;
  Writer json(output, Form::kCompact, foundation::json::EmptyMembers::kOmitted);
  json.beginObject();
  json.key("value");
  json.value(Value(Object{{"empty", Value("")}, {"list", Value(Array{})}}));
  json.key("after");
  json.text("");
  json.key("object");
  json.object({{"zero", Value(0)}});
  json.key("after");
  json.number(0.0);
  json.key("end");
  json.boolean(true);
  json.endObject();
  EXPECT_EQ(output, R"({"value":{"empty":"","list":[]},"object":{"zero":0},"end":true})");
}

TEST(Writer, OmitsNothingOutsideOfAnObject) {
  std::string output;
  Writer json(output, Form::kCompact, foundation::json::EmptyMembers::kOmitted);
  json.null();
  EXPECT_EQ(output, "null");
}

// A member that was taken back leaves no trace: the next one has its comma and its own line.
TEST(Writer, SeparatesTheMembersAroundOneThatIsOmitted) {
  std::string output;
  Writer json(output, Form::kIndented, foundation::json::EmptyMembers::kOmitted);
  json.beginArray();
  json.beginObject();
  json.key("a");
  json.boolean(true);
  json.key("b");
  json.null();
  json.endObject();
  json.beginObject();
  json.key("c");
  json.text("");
  json.key("d");
  json.boolean(true);
  json.endObject();
  json.endArray();
  EXPECT_EQ(output, "[\n  {\n    \"a\": true\n  },\n  {\n    \"d\": true\n  }\n]");
}

TEST(Writer, OmitsTheFirstMemberOfAnIndentedObject) {
  std::string output;
  Writer json(output, Form::kIndented, foundation::json::EmptyMembers::kOmitted);
  json.beginObject();
  json.key("a");
  json.beginArray();
  json.endArray();
  json.key("b");
  json.boolean(true);
  json.key("c");
  json.null();
  json.endObject();
  EXPECT_EQ(output, "{\n  \"b\": true\n}");
}

}  // namespace foundation::json
