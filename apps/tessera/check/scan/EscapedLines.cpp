#include "tessera/check/scan/EscapedLines.hpp"

#include <algorithm>
#include <cstddef>

#include "fl/i18n/search.hpp"

namespace tessera::check::scan {

using catalogue::Diagnostic;
using catalogue::Position;
using catalogue::Span;

namespace {

constexpr std::u16string_view kEscapedLeader = u"%%\\";

}  // namespace

std::u16string_view EscapedLines::add(std::uint64_t number, std::u16string_view line) {
  // The vector search is over before most lines need the other one.
  const std::size_t pair = fl::i18n::findPair<u'%', u'\\'>(line);
  if (pair == line.size()) return line;
  std::size_t found = line.find(kEscapedLeader, pair == 0 ? 0 : pair - 1);
  if (found == line.npos) return line;
  Line& escaped = lines[number];
  std::size_t copied = 0;
  for (; found != line.npos; found = line.find(kEscapedLeader, copied)) {
    const std::size_t backslash = found + kEscapedLeader.size() - 1;
    escaped.text += line.substr(copied, backslash - copied);
    escaped.removed.push_back(escaped.text.size());
    copied = backslash + 1;
  }
  escaped.text += line.substr(copied);
  return escaped.text;
}

std::u16string_view EscapedLines::textOf(std::uint64_t number,
                                         std::u16string_view line) const noexcept {
  const auto found = lines.find(number);
  return found == lines.end() ? line : std::u16string_view(found->second.text);
}

Span EscapedLines::inFile(const Span& span) const noexcept {
  // A backslash at an end of the span is not part of it.
  const auto toFile = [this](const Position& position, bool isEnd) {
    const auto found = lines.find(position.line);
    if (found == lines.end()) return position;
    const auto& removed = found->second.removed;
    const auto next = isEnd ? std::ranges::lower_bound(removed, position.unit)
                            : std::ranges::upper_bound(removed, position.unit);
    return Position{position.line,
                    position.unit + static_cast<std::uint64_t>(next - removed.begin())};
  };
  return {toFile(span.begin, false), toFile(span.end, span.begin != span.end)};
}

void EscapedLines::mapToFile(Diagnostic& diagnostic) const {
  if (lines.empty()) return;
  if (diagnostic.fix) {
    const bool isUncertain =
        std::ranges::any_of(diagnostic.fix->edits, [this](const catalogue::Edit& edit) {
          return isBesideBackslash(edit.span.begin) || isBesideBackslash(edit.span.end);
        });
    if (isUncertain) diagnostic.fix.reset();
  }
  diagnostic.span = inFile(diagnostic.span);
  for (catalogue::Note& note : diagnostic.notes) note.span = inFile(note.span);
  if (diagnostic.kind == catalogue::DiagnosticKind::kInvalidPositionData) noteBackslash(diagnostic);
  if (!diagnostic.fix) return;
  for (catalogue::Edit& edit : diagnostic.fix->edits) edit.span = inFile(edit.span);
}

bool EscapedLines::isBesideBackslash(const Position& position) const noexcept {
  const auto found = lines.find(position.line);
  return found != lines.end() && std::ranges::binary_search(found->second.removed, position.unit);
}

void EscapedLines::noteBackslash(Diagnostic& diagnostic) const {
  const auto found = lines.find(diagnostic.span.begin.line);
  if (found == lines.end()) return;
  // Before the first one, the positions in the file are the same.
  const std::uint64_t at = found->second.removed.front();
  diagnostic.notes.push_back({catalogue::spanOf(found->first, at, at + 1),
                              "the positions of a range do not count this backslash"});
}

}  // namespace tessera::check::scan
