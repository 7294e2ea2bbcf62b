#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "foundation/json/Value.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// An object that stands inside a line of text, and the place behind its closing brace.
struct EmbeddedObject {
  Object object;
  std::size_t end = 0;
};

/// How deep an embedded object may nest; the object itself is at depth 1.
inline constexpr std::size_t kEmbeddedDepth = 64;

/// Reads the one JSON object that begins at `from`, where a "{" must stand, or gives nothing.
///
/// White space is spaces and tabs only. A whole number is a signed integer where it fits in 64
/// bits, else an unsigned one where it fits, else a double; a number with a fraction or an
/// exponent is a double. Of equal keys the last one counts. Nothing comes of an object that is no
/// JSON, nests deeper than `kEmbeddedDepth` or has a number beyond the largest double. Unpaired
/// surrogates become U+FFFD. What follows the object is not looked at.
QUENLITH_JSON_EXPORT std::optional<EmbeddedObject> parseEmbeddedObject(std::u16string_view text,
                                                                       std::size_t from);

/// Where a text stops being JSON, in 16-bit code units from its start, and why.
struct ParseError {
  std::size_t position = 0;
  const char* reason = "";
};

/// The place behind an object, or the reason why there is none.
struct ObjectExtent {
  std::optional<std::size_t> end;
  ParseError failure;
};

/// Like `parseEmbeddedObject`, but only says where the object ends. Does not allocate.
QUENLITH_JSON_EXPORT ObjectExtent measureEmbeddedObject(std::u16string_view text,
                                                        std::size_t from) noexcept;

/// A value, or the reason why there is none.
struct ParseResult {
  std::optional<Value> value;
  ParseError failure;
};

/// Reads a whole JSON text: one value of any kind, with all of JSON's white space around and
/// inside it. Otherwise like `parseEmbeddedObject`, with a depth of up to `Lexer::kMaxDepth`.
QUENLITH_JSON_EXPORT ParseResult parse(std::u16string_view text);

}  // namespace foundation::json
