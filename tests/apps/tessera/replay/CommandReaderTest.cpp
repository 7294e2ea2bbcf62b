#include "tessera/replay/CommandReader.hpp"

#include <gtest/gtest.h>

#include <string>

#include "fl/i18n/ustring.hpp"

namespace {

using tessera::replay::Command;
using tessera::replay::CommandError;
using tessera::replay::CommandReader;
using tessera::replay::Operation;

Command read(std::u16string_view text) {
  return CommandReader(text).read();
}

std::string errorOf(std::u16string_view text) {
  try {
    read(text);
    return "no error";
  } catch (const CommandError& error) {
    return std::to_string(error.column) + " " + error.what;
  }
}

TEST(CommandReader, ReadsEveryOperation) {
  EXPECT_EQ(read(uR"({"op":"document"})").operation, Operation::kDocument);
  EXPECT_EQ(read(uR"({"op":"nodes"})").operation, Operation::kNodes);
  const Command appendix =
      read(uR"({"op":"appendix","entries":["%<@task#a>","# <@new#b {\"k\":1}>"]})");
  EXPECT_EQ(appendix.operation, Operation::kAppendix);
  ASSERT_EQ(appendix.entries.size(), 2u);
  EXPECT_EQ(appendix.entries[1].toString(), u"%<@new#b {\"k\":1}>");
  const Command reset = read(uR"({"op":"reset","parser":""})");
  EXPECT_EQ(reset.operation, Operation::kReset);
  EXPECT_EQ(reset.parser, u"");
  const Command line = read(uR"({"op":"addLine","text":"a\nb"})");
  EXPECT_EQ(line.operation, Operation::kAddLine);
  EXPECT_EQ(line.text, u"a\nb");
  const Command view = read(uR"({"op":"setView","node":12,"view":"v"})");
  EXPECT_EQ(view.operation, Operation::kSetView);
  EXPECT_EQ(view.node, 12u);
  EXPECT_EQ(view.view, u"v");
}

TEST(CommandReader, ReadsASnippetInAnyOrderOfKeys) {
  const Command parse = read(
      uR"( { "snippet" : {"type":{"kind":255,"group":1},"auxiliaryText":"x","text":"t"},)"
      uR"( "parser":"P", "op":"parse" } )");
  EXPECT_EQ(parse.operation, Operation::kParse);
  EXPECT_EQ(parse.parser, u"P");
  EXPECT_EQ(parse.snippet.text, u"t");
  EXPECT_EQ(parse.snippet.type.kind, 255);
  EXPECT_EQ(parse.snippet.type.group, 1);
  EXPECT_EQ(parse.snippet.auxiliaryText, u"x");
  const Command canParse =
      read(uR"({"op":"canParse","parser":"P","snippet":{"text":"","type":{"group":0,"kind":0}}})");
  EXPECT_EQ(canParse.operation, Operation::kCanParse);
  EXPECT_FALSE(canParse.snippet.auxiliaryText);
}

TEST(CommandReader, ReadsAnUnpairedSurrogateAsOneUnit) {
  const Command line = read(uR"({"op":"addLine","text":"a\ud800b\udc00\ud83c\udfc6"})");
  EXPECT_EQ(line.text, (std::u16string{u'a', 0xD800, u'b', 0xDC00, 0xD83C, 0xDFC6}));
}

TEST(CommandReader, ReportsWhereAndWhyALineIsNotACommand) {
  struct Case {
    std::u16string_view text;
    std::string error;
  };
  const Case cases[] = {
      // Missing, unknown, misplaced and duplicate keys.
      {uR"({})", "1 the key \"op\" is missing"},
      {uR"({"op":"jump"})", "7 unknown operation \"jump\""},
      {uR"({"op":"reset"})", "14 the key \"parser\" is missing"},
      {uR"({"op":"nodes","parser":"P"})", "15 the key \"parser\" does not belong here"},
      {uR"({"op":"nodes","what":1})", "15 unknown key \"what\""},
      {uR"({"op":"nodes","op":"nodes"})", "15 the key \"op\" appears twice"},
      {uR"({"op":"setView","node":1})", "25 the key \"view\" is missing"},
      // Values of the wrong kind.
      {uR"(["op"])", "1 an object is expected here"},
      {uR"({"op":1})", "7 a string is expected here"},
      {uR"({"op":"appendix","entries":"x"})", "28 an array is expected here"},
      {uR"({"op":"appendix","entries":[1]})", "29 an entry must be a string"},
      {uR"({"op":"appendix","entries":["x"]})", "29 the entry \"x\" is not a marker"},
      {uR"({"op":"appendix","entries":["task"]})", "29 the entry \"task\" is not a marker"},
      {uR"({"op":"setView","node":"1","view":""})", "24 a number is expected here"},
      {uR"({"op":"setView","node":-1,"view":""})",
       "24 a whole number from 0 to 9223372036854775807 is expected here"},
      {uR"({"op":"setView","node":1.0,"view":""})",
       "24 a whole number from 0 to 9223372036854775807 is expected here"},
      {uR"({"op":"canParse","parser":"P","snippet":[]})", "41 an object is expected here"},
      // Snippets.
      {uR"({"op":"parse","parser":"P","snippet":{"text":""}})", "48 the key \"type\" is missing"},
      {uR"({"op":"parse","parser":"P","snippet":{"txt":""}})", "39 unknown key \"txt\""},
      {uR"({"op":"parse","parser":"P","snippet":{"type":{"group":0,"kind":256},"text":""}})",
       "64 a whole number from 0 to 255 is expected here"},
      {uR"({"op":"parse","parser":"P","snippet":{"type":{"group":0},"text":""}})",
       "56 the key \"kind\" is missing"},
      {uR"({"op":"parse","parser":"P","snippet":{"type":{"group":0,"kind":0,"x":0},"text":""}})",
       "66 the key \"x\" does not belong here"},
      // Columns count characters.
      {uR"({"op":"addLine","text":"🏆","x":1})", "28 unknown key \"x\""},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(errorOf(test.text), test.error) << fl::i18n::ustring_to_utf8(test.text);
  }
}

TEST(CommandReader, ReportsWhereAndWhyALineIsNotJson) {
  struct Case {
    std::u16string_view text;
    std::string error;
  };
  const Case cases[] = {
      {u"", "1 the text ends too early"},
      {u"{", "2 the text ends too early"},
      {u"{\"op\":\"nodes\"", "14 the text ends too early"},
      {u"{\"op\":\"nodes\"} x", "16 there is text behind the value"},
      {u"{\"op\":\"nodes\"} {}", "16 there is text behind the value"},
      {u"nodes", "1 a value is missing"},
      {u"{\"op\":}", "7 a value is missing"},
      {u"{\"op\":\"nodes\",}", "15 a key in quotes is missing"},
      {u"\"\\ud\"", "2 there is no such escape"},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(errorOf(test.text), test.error) << fl::i18n::ustring_to_utf8(test.text);
  }
}

}  // namespace
