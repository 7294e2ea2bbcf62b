#include "tessera/check/fixes/FixedText.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "tessera/check/fixes/UnifiedDiff.hpp"

namespace tessera::check::fixes {
namespace {

using catalogue::Edit;
using catalogue::Fix;
using catalogue::Position;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Returns the lines of `bytes` with their endings.
std::vector<std::string> splitLines(std::string_view bytes) {
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    lines.emplace_back(bytes.substr(0, end));
    bytes.remove_prefix(end);
  }
  return lines;
}

/// Returns the length in bytes of the character that starts with `lead`.
std::size_t lengthOf(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  return lead >= 0xC0 ? 2 : 1;
}

/// Chooses fixes whose edits neither overlap nor touch each other.
class Selection {
 public:
  bool take(const Fix& fix) {
    if (std::ranges::any_of(fix.edits, [this](const Edit& edit) { return isTaken(edit); }))
      return false;
    for (const Edit& edit : fix.edits) {
      spans.emplace(edit.span.begin, edit.span.end);
      edits.push_back(&edit);
    }
    return !fix.edits.empty();
  }

  /// The edits of the fixes taken, the last one in the text first.
  std::vector<const Edit*> editsFromEnd() {
    std::ranges::sort(edits, std::greater{}, [](const Edit* edit) { return edit->span.begin; });
    return std::move(edits);
  }

 private:
  bool isTaken(const Edit& edit) const {
    const auto next = spans.upper_bound({edit.span.end, {~std::uint64_t{0}, 0}});
    return next != spans.begin() && std::prev(next)->second >= edit.span.begin;
  }

  std::set<std::pair<Position, Position>> spans;
  std::vector<const Edit*> edits;
};

}  // namespace

FixedText::FixedText(std::string_view bytes) : original(splitLines(bytes)) {
  lines.reserve(original.size());
  for (std::size_t i = 0; i < original.size(); ++i) lines.push_back({original[i], i});
}

std::size_t FixedText::apply(std::span<const catalogue::Diagnostic> diagnostics) {
  Selection selection;
  std::size_t count = 0;
  for (const catalogue::Diagnostic& diagnostic : diagnostics) {
    if (diagnostic.fix && selection.take(*diagnostic.fix)) ++count;
  }
  std::set<std::size_t> removed;
  for (const Edit* edit : selection.editsFromEnd()) replace(*edit);
  if (count != 0) normalize();
  return count;
}

/// Removes lines of which nothing is left, and joins a line without an ending to the next one.
void FixedText::normalize() {
  std::vector<Line> kept;
  kept.reserve(lines.size());
  for (Line& line : lines) {
    if (line.bytes.empty()) continue;
    if (kept.empty() || kept.back().bytes.ends_with('\n')) {
      kept.push_back(std::move(line));
    } else {
      kept.back().bytes += line.bytes;
    }
  }
  lines = std::move(kept);
}

/// Afterwards lines may be empty, or lack their ending.
void FixedText::replace(const Edit& edit) {
  const auto& [begin, end] = edit.span;
  Line& first = lines[begin.line - 1];
  const std::size_t from = offsetOf(begin);
  if (begin.line == end.line) {
    first.bytes.replace(from, offsetOf(end) - from, edit.text);
    return;
  }
  if (end.line <= lines.size()) lines[end.line - 1].bytes.erase(0, offsetOf(end));
  for (std::size_t line = begin.line + 1; line < end.line; ++line) lines[line - 1].bytes.clear();
  first.bytes.replace(from, first.bytes.npos, edit.text);
}

std::size_t FixedText::offsetOf(const Position& position) const {
  const Line& line = lines[position.line - 1];
  std::size_t offset = 0;
  if (line.origin == 0 && line.bytes.starts_with(kByteOrderMark)) offset = kByteOrderMark.size();
  if (position.unit == 0 && position.line > 1) return 0;
  for (std::uint64_t unit = 0; unit < position.unit;) {
    const std::size_t length = lengthOf(static_cast<unsigned char>(line.bytes[offset]));
    offset += length;
    unit += length == 4 ? 2 : 1;
  }
  return offset;
}

std::string FixedText::bytes() const {
  std::string result;
  for (const Line& line : lines) result += line.bytes;
  return result;
}

std::string FixedText::diff(const std::string& name) const {
  UnifiedDiff diff(name);
  auto current = lines.begin();
  for (std::size_t i = 0; i < original.size(); ++i) {
    const bool isThere = current != lines.end() && current->origin == i;
    if (isThere && current->bytes == original[i]) {
      diff.keep(original[i]);
    } else {
      diff.remove(original[i]);
      if (isThere) diff.add(current->bytes);
    }
    if (isThere) ++current;
  }
  return diff.finish();
}

}  // namespace tessera::check::fixes
