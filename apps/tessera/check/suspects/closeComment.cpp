#include "tessera/check/suspects/closeComment.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/findRepair.hpp"

namespace tessera::check::suspects {

using namespace scan;

namespace {

/// Returns whether `text` without one of its units is `other`.
bool hasOneMore(std::u16string_view text, std::u16string_view other) {
  if (text.size() != other.size() + 1) return false;
  const auto differing = std::ranges::mismatch(other, text);
  return std::equal(differing.in1, other.end(), differing.in2 + 1);
}

/// Returns whether a unit of `closer` is missing, added or replaced in `text`.
bool isDamagedCloser(std::u16string_view text, std::u16string_view closer) {
  if (text.size() != closer.size()) return hasOneMore(text, closer) || hasOneMore(closer, text);
  std::size_t equal = 0;
  for (std::size_t i = 0; i < text.size(); ++i) equal += text[i] == closer[i] ? 1U : 0U;
  return equal + 1 == closer.size();
}

/// The text between a marker and the end of its line.
struct Rest {
  std::u16string_view line;
  /// After the ">" of the marker.
  std::uint64_t bodyEnd = 0;
  /// The text [`begin`, `end`) without the blanks around it.
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::u16string_view text() const { return line.substr(begin, end - begin); }
};

Rest restOf(const FoundMarker& found, std::uint64_t end) {
  const std::u16string_view line = found.lineText;
  const std::uint64_t bodyEnd = *found.parts.bodyEnd;
  Rest rest{line, bodyEnd, bodyEnd, end};
  while (rest.begin < rest.end && isBlank(line[rest.begin])) ++rest.begin;
  while (rest.end > rest.begin && isBlank(line[rest.end - 1])) --rest.end;
  return rest;
}

/// Returns the opener of the comment as it is written: "/**" begins documentation, "/*" does not.
std::u16string_view writtenOpener(const FoundMarker& found) {
  const std::uint64_t begin = found.parts.position;
  const std::u16string_view opener = found.lineText.substr(begin, found.parts.opening - begin);
  return opener.substr(0, opener.find_last_not_of(u" \t") + 1);
}

/// Returns what to insert after the marker so that the text after it is in a separate comment,
/// which begins with `opener`; nothing if that text is not the rest of the comment.
std::optional<std::u16string> separator(const Rest& rest, const CommentEnds& ends,
                                        std::u16string_view opener) {
  const std::u16string_view text = rest.text();
  const std::size_t closer = text.find(ends.closer);
  const bool isRestOfComment = closer != text.npos && closer != 0 && rest.begin != rest.bodyEnd &&
                               text.find(ends.opener) > closer;
  if (!isRestOfComment) return std::nullopt;
  std::u16string inserted = u" ";
  return inserted.append(ends.closer).append(u" ").append(opener);
}

}  // namespace

void closeComment(const FoundMarker& found, std::uint64_t end, BlockComments& comments,
                  Suspect& suspect) {
  const CommentEnds ends = commentEndsOf(found.parts.comment);
  const Rest rest = restOf(found, end);
  DamagedText text{found.line,   found.lineText, found.parts.position, end, rest.bodyEnd,
                   std::nullopt, false};
  std::optional<Repair> repair;
  const auto inserted = separator(rest, ends, writtenOpener(found));
  const std::u16string closer = u" " + std::u16string(ends.closer);
  if (inserted) {
    repair = repairBy(text, {rest.bodyEnd, 0, *inserted});
  } else if (end == found.lineText.size() &&
             comments.isNeverClosed(found.parts.comment, found.line)) {
    if (rest.begin == rest.end) repair = repairBy(text, {rest.bodyEnd, end - rest.bodyEnd, closer});
    const bool isDamaged = isDamagedCloser(rest.text(), ends.closer);
    // What is too much directly after the marker took the place of the blank there.
    const bool isBlankLost = rest.begin == rest.bodyEnd && rest.text().size() > ends.closer.size();
    const std::u16string_view replacement = isBlankLost ? closer : ends.closer;
    if (isDamaged) repair = repairBy(text, {rest.begin, rest.end - rest.begin, replacement});
  }
  if (!repair) return;
  suspect.diagnostic.fix = std::move(repair->fix);
  suspect.repaired = std::move(repair->text);
}

}  // namespace tessera::check::suspects
