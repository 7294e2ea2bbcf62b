#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "quenlith/syntax/MarkerCandidate.hpp"
#include "tessera/check/scan/FileScan.hpp"

namespace tessera::check::scan {

/// The shortest opener and closer of a block comment.
struct CommentEnds {
  std::u16string_view opener;
  std::u16string_view closer;
};

/// Returns the ends of comments of `form`, which must be a block comment.
CommentEnds commentEndsOf(quenlith::syntax::CommentForm form) noexcept;

/// Tells whether a block comment goes on after its line. No language is parsed: only the openers
/// and closers of the file are compared.
class BlockComments {
 public:
  /// Borrows `scan`.
  explicit BlockComments(const FileScan& scan) : scan(scan) {}

  /// Returns whether a comment of `form` that is open at the end of a line certainly lacks its
  /// closer: no closer follows, or the openers and closers that follow balance without it and the
  /// first of them is a comment on one line. O(log n) after the first call for a form, which reads
  /// the file.
  bool isNeverClosed(quenlith::syntax::CommentForm form, std::uint64_t line);

 private:
  struct End {
    std::uint64_t line = 0;
    /// An opener after a blank or at the start of a line, with a closer on that line.
    bool isWholeComment = false;
    /// The openers minus the closers up to this one, inclusive; and the least such difference
    /// from this one on.
    std::int64_t depth = 0;
    std::int64_t leastDepth = 0;
  };
  using Ends = std::vector<End>;

  Ends readEnds(const CommentEnds& ends) const;
  static void addLine(std::uint64_t number, std::u16string_view line, const CommentEnds& ends,
                      Ends& found);

  const FileScan& scan;
  // By the form of comment; nothing for a form that was not asked for.
  std::array<std::optional<Ends>, 8> endsOfForm;
};

}  // namespace tessera::check::scan
