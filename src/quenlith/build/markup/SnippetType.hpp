#pragma once

#include <cstdint>

namespace quenlith::build::markup {

/// What a parse decided of a line, handed back by the host with the next one.
///
/// The two bytes are copied and compared as one unit.
struct SnippetType {
  /// Written as 0 by the parsers of this bundle; passed on as it is otherwise.
  std::uint8_t group = 0;
  /// 0: plain code, no task open. 3: a task is open. On input every value above 1 says
  /// that a task is open on the host's side.
  std::uint8_t kind = 0;

  friend bool operator==(const SnippetType&, const SnippetType&) = default;
};

}  // namespace quenlith::build::markup
