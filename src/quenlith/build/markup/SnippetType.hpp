#pragma once

#include <cstdint>

namespace quenlith::build::markup {

/// The type of a line, which the host passes with the next line.
///
/// The two bytes are copied and compared as one unit.
struct SnippetType {
  /// The parsers of this bundle set it to 0.
  std::uint8_t group = 0;
  /// 0: plain code, no task is open. 3: a task is open. In a snippet, every value above 1 means
  /// that a task is open on the host's side.
  std::uint8_t kind = 0;

  friend bool operator==(const SnippetType&, const SnippetType&) = default;
};

}  // namespace quenlith::build::markup
