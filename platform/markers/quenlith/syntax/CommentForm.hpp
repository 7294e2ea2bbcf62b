#pragma once

#include <cstdint>

namespace quenlith::syntax {

/// What precedes the "<@" of a marker, or of a text like a marker.
enum class CommentForm : std::uint8_t {
  /// Nothing that begins a comment.
  kNone,
  /// A leader or an opener with too few characters: "/", "-", "*", "<!-".
  kTooShort,
  /// "REM" or "rem" without a blank after it.
  kUnspacedRemark,
  /// The leader of a line comment.
  kLine,
  /// "/*", closed by "*/".
  kSlashStar,
  /// "(*", closed by "*)".
  kParenthesisStar,
  /// "<!--", closed by "-->".
  kAngleBracket,
  /// "{-", closed by "-}".
  kBrace
};

/// Returns whether a marker may follow: there is a whole leader or opener.
constexpr bool isComplete(CommentForm form) noexcept {
  return form >= CommentForm::kLine;
}

/// Returns whether the comment begins with an opener, and so needs a closer.
constexpr bool isBlock(CommentForm form) noexcept {
  return form > CommentForm::kLine;
}

}  // namespace quenlith::syntax
