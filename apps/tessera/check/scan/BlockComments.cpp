#include "tessera/check/scan/BlockComments.hpp"

#include <algorithm>

#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::scan {

using quenlith::syntax::CommentForm;

CommentEnds commentEndsOf(CommentForm form) noexcept {
  switch (form) {
    case CommentForm::kSlashStar:
      return {u"/*", u"*/"};
    case CommentForm::kParenthesisStar:
      return {u"(*", u"*)"};
    case CommentForm::kAngleBracket:
      return {u"<!--", u"-->"};
    default:
      return {u"{-", u"-}"};
  }
}

bool BlockComments::isNeverClosed(CommentForm form, std::uint64_t line) {
  auto& known = endsOfForm.at(static_cast<std::size_t>(form));
  if (!known) known = readEnds(commentEndsOf(form));
  const auto next = std::ranges::upper_bound(*known, line, {}, &End::line);
  if (next == known->end()) return true;
  const std::int64_t depthBefore = next == known->begin() ? 0 : (next - 1)->depth;
  return next->isWholeComment && next->leastDepth >= depthBefore;
}

BlockComments::Ends BlockComments::readEnds(const CommentEnds& ends) const {
  Ends found;
  for (std::uint64_t number = 1; number <= scan.lines.count(); ++number) {
    addLine(number, scan.line(number), ends, found);
  }
  for (std::size_t i = found.size(); i > 1; --i) {
    found[i - 2].leastDepth = std::min(found[i - 2].depth, found[i - 1].leastDepth);
  }
  return found;
}

void BlockComments::addLine(std::uint64_t number, std::u16string_view line, const CommentEnds& ends,
                            Ends& found) {
  // Most lines have neither.
  std::size_t opener = line.find(ends.opener);
  std::size_t closer = line.find(ends.closer);
  while (opener != line.npos || closer != line.npos) {
    const bool isOpener = opener < closer;
    const std::size_t at = isOpener ? opener : closer;
    End end;
    end.line = number;
    end.isWholeComment = isOpener && closer != line.npos && (at == 0 || isBlank(line[at - 1]));
    end.depth = (found.empty() ? 0 : found.back().depth) + (isOpener ? 1 : -1);
    end.leastDepth = end.depth;
    found.push_back(end);
    const std::size_t after = at + (isOpener ? ends.opener : ends.closer).size();
    if (opener < after) opener = line.find(ends.opener, after);
    if (closer < after) closer = line.find(ends.closer, after);
  }
}

}  // namespace tessera::check::scan
