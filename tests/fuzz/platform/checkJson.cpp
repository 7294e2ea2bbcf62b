#include <cstddef>
#include <string>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "foundation/json/Writer.hpp"
#include "foundation/json/parse.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "oracle/markers/JsonTwin.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;
using foundation::json::Form;
using foundation::json::Value;

namespace {

std::string written(const Value& value, Form form) {
  std::string text;
  foundation::json::Writer(text, form).value(value);
  return text;
}

// A parsed value is written as JSON in each form; parsing the canonical form returns an equal
// value.
void checkWriting(const Value& value) {
  const std::string canonical = written(value, Form::kCanonical);
  const auto again = foundation::json::parse(fl::i18n::utf8_to_ustring(canonical));
  require(again.value && *again.value == value, "canonical text parses to an equal value");
  require(written(*again.value, Form::kCanonical) == canonical, "canonical text is stable");
  require(again.value->hash() == value.hash(), "equal values have equal hashes");
  for (const auto form : {Form::kCompact, Form::kIndented}) {
    const std::string output = written(value, form);
    require(foundation::json::parse(fl::i18n::utf8_to_ustring(output)).value.has_value(),
            "every form is JSON");
  }
}

void checkParse(const ustring& text) {
  constexpr std::u16string_view kSpace = u" \t\n\r";
  const auto read = foundation::json::parse(text);
  const auto twin = oracle::parseByRapidJson(text, 0, oracle::TwinSpace::kAll,
                                             foundation::json::Lexer::kMaxDepth);
  const bool isWhole = twin && text.find_first_not_of(kSpace, twin->end) == ustring::npos;
  require(read.value.has_value() == isWhole, "RapidJSON accepts the same texts");
  if (!read.value) {
    require(read.failure.position <= text.size(), "a failure lies within the text");
    return;
  }
  require(*read.value == twin->value, "RapidJSON reads the same value");
  checkWriting(*read.value);
}

void checkTokens(const ustring& text) {
  foundation::json::Lexer lexer(text);
  std::size_t before = 0;
  while (true) {
    const auto token = lexer.next();
    require(lexer.begin() >= before && lexer.end() <= text.size(), "tokens ascend");
    before = lexer.begin();
    if (token == foundation::json::Token::kError || token == foundation::json::Token::kEnd) {
      return;
    }
  }
}

void checkEmbedded(const ustring& text) {
  const std::size_t from = text.find(u'{');
  if (from == ustring::npos) return;
  const auto read = foundation::json::parseEmbeddedObject(text, from);
  const auto measured = foundation::json::measureEmbeddedObject(text, from);
  require(read.has_value() == measured.end.has_value(), "reading and measuring agree");
  const auto twin = oracle::parseByRapidJson(text, from, oracle::TwinSpace::kBlanks,
                                             foundation::json::kEmbeddedDepth);
  require(read.has_value() == twin.has_value(), "RapidJSON accepts the same objects");
  if (!read) return;
  require(read->end == *measured.end && text[read->end - 1] == u'}', "it ends at its brace");
  require(read->end == twin->end && Value(read->object) == twin->value,
          "RapidJSON reads the same object");
}

}  // namespace

void checkJson(std::string_view input) {
  const ustring text = textOf(input);
  checkParse(text);
  checkTokens(text);
  checkEmbedded(text);
}

}  // namespace quenlith::fuzz
