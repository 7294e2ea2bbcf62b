#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "foundation/json/Lexer.hpp"
#include "foundation/json/Writer.hpp"
#include "foundation/json/format.hpp"
#include "foundation/json/parse.hpp"
#include "fuzz/require.hpp"

namespace {

using fl::i18n::ustring;
using foundation::json::Value;
using quenlith::fuzz::require;

std::string written(const Value& value, foundation::json::Form form) {
  std::string text;
  foundation::json::Writer(text, form).value(value);
  return text;
}

// A parsed value is written as JSON in each form; parsing the canonical form returns an equal
// value.
void checkText(const ustring& text) {
  const auto read = foundation::json::parse(text);
  if (!read.value) {
    require(read.failure.position <= text.size(), "a failure lies within the text");
    return;
  }
  const std::string canonical = written(*read.value, foundation::json::Form::kCanonical);
  const auto again = foundation::json::parse(fl::i18n::utf8_to_ustring(canonical));
  require(again.value && *again.value == *read.value, "canonical text parses to an equal value");
  require(written(*again.value, foundation::json::Form::kCanonical) == canonical,
          "canonical text is stable");
  require(again.value->hash() == read.value->hash(), "equal values have equal hashes");
  for (const auto form : {foundation::json::Form::kCompact, foundation::json::Form::kIndented}) {
    const std::string output = written(*read.value, form);
    require(foundation::json::parse(fl::i18n::utf8_to_ustring(output)).value.has_value(),
            "every form is JSON");
  }
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
  if (from == ustring::npos) {
    return;
  }
  const auto read = foundation::json::parseEmbeddedObject(text, from);
  const auto measured = foundation::json::measureEmbeddedObject(text, from);
  require(read.has_value() == measured.end.has_value(), "reading and measuring agree");
  if (read) {
    require(read->end == *measured.end && text[read->end - 1] == u'}', "it ends at its brace");
  }
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ustring text =
      fl::i18n::utf8_to_ustring(std::string_view(reinterpret_cast<const char*>(data), size));
  checkText(text);
  checkTokens(text);
  checkEmbedded(text);
  return 0;
}
