#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "foundation/json/Value.hpp"
#include "quenlith/export/json.hpp"

namespace foundation::json {

/// An object embedded in a line of text, and the position after its closing brace.
struct EmbeddedObject {
  Object object;
  std::size_t end = 0;
};

/// The maximum nesting depth of an embedded object; the object itself is at depth 1.
inline constexpr std::size_t kEmbeddedDepth = 64;

/// Parses the JSON object that begins with the "{" at `from`, which must be there.
///
/// Returns nothing if the object is not JSON, nests deeper than `kEmbeddedDepth` or contains a
/// number beyond the largest double. White space is spaces and tabs only. Numbers are converted as
/// `Number` says. If a key occurs twice, the last member counts. Unpaired surrogates become U+FFFD.
/// The text after the object is not read.
QUENLITH_JSON_EXPORT std::optional<EmbeddedObject> parseEmbeddedObject(std::u16string_view text,
                                                                       std::size_t from);

/// The position of the first error in a text, in 16-bit code units from its start, and the reason.
struct ParseError {
  std::size_t position = 0;
  const char* reason = "";
};

/// The position after an object, or the reason why there is none.
struct ObjectExtent {
  std::optional<std::size_t> end;
  ParseError failure;
};

/// Like `parseEmbeddedObject`, but returns only where the object ends. Does not allocate.
QUENLITH_JSON_EXPORT ObjectExtent measureEmbeddedObject(std::u16string_view text,
                                                        std::size_t from) noexcept;

/// A value, or the reason why there is none.
struct ParseResult {
  std::optional<Value> value;
  ParseError failure;
};

/// Parses a whole JSON text: one value of any kind, with any JSON white space around and inside
/// it. Otherwise like `parseEmbeddedObject`, with a maximum depth of `Lexer::kMaxDepth`.
QUENLITH_JSON_EXPORT ParseResult parse(std::u16string_view text);

}  // namespace foundation::json
