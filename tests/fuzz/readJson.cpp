#include "fuzz/readJson.hpp"

#include <utility>

#include "TextTwin.hpp"
#include "foundation/json/Lexer.hpp"
#include "oracle/markers/JsonTwin.hpp"

namespace quenlith::fuzz {

std::optional<foundation::json::Value> readJson(std::string_view utf8) {
  const fl::i18n::twin::Decoded decoded = fl::i18n::twin::decodeUtf8(utf8);
  if (decoded.firstInvalid) return std::nullopt;
  auto read = oracle::parseByRapidJson(decoded.text, 0, oracle::TwinSpace::kAll,
                                       foundation::json::Lexer::kMaxDepth);
  if (!read) return std::nullopt;
  const bool isWhole = decoded.text.find_first_not_of(u" \t\r\n", read->end) == decoded.text.npos;
  return isWhole ? std::optional(std::move(read->value)) : std::nullopt;
}

}  // namespace quenlith::fuzz
