#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "quenlith/syntax/CommentForm.hpp"

namespace quenlith::syntax {

/// The leader or opener before a "<@".
struct CommentStart {
  /// The first character of the leader or opener, also if it is too short; the position of the "<@"
  /// if there is neither.
  std::size_t position = 0;
  CommentForm form = CommentForm::kNone;
};

/// Returns the leader or opener before the "<@" at `opening`, with or without blanks between them.
///
/// Reads no unit before `floor`, where the text of an earlier marker ends: its characters cannot
/// be part of a leader or opener.
CommentStart findCommentStart(std::u16string_view text, std::size_t floor,
                              std::size_t opening) noexcept;

/// Returns the position after the closer of `form` that begins at `at`; `at` if the form needs
/// none; nothing if the closer is not there.
std::optional<std::size_t> findCloserEnd(std::u16string_view text, std::size_t at,
                                         CommentForm form) noexcept;

}  // namespace quenlith::syntax
