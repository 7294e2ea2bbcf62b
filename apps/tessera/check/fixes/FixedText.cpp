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

  /// Returns the edits of the fixes taken, in ascending order.
  std::vector<const Edit*> takenEdits() {
    std::ranges::sort(edits, {}, [](const Edit* edit) { return edit->span.begin; });
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

/// Applies edits in ascending order, each line in one pass: a line may be long and have many edits.
/// Afterwards lines may be empty, or lack their ending.
class FixedText::Editor {
 public:
  /// Borrows `lines`.
  explicit Editor(std::vector<Line>& lines) : lines(lines) {}

  void apply(const Edit& edit) {
    moveTo(edit.span.begin, Passed::kKept);
    edited += edit.text;
    moveTo(edit.span.end, Passed::kDropped);
  }

  void finish() { leaveLine(Passed::kKept); }

 private:
  /// What becomes of the text that `moveTo` passes.
  enum class Passed { kKept, kDropped };

  void moveTo(const Position& position, Passed passed) {
    if (position.line != number) {
      leaveLine(passed);
      if (passed == Passed::kDropped) clearLines(number + 1, position.line);
      enterLine(position.line);
    }
    const std::size_t from = offset;
    while (unit < position.unit && offset < line().bytes.size()) {
      const std::size_t length = lengthOf(static_cast<unsigned char>(line().bytes[offset]));
      offset += length;
      unit += length == 4 ? 2 : 1;
    }
    if (passed == Passed::kKept) edited.append(line().bytes, from, offset - from);
  }

  void leaveLine(Passed passed) {
    if (!isInLine()) return;
    if (passed == Passed::kKept) edited.append(line().bytes, offset);
    line().bytes = std::exchange(edited, {});
  }

  /// The line after the last one is empty.
  void enterLine(std::uint64_t entered) {
    number = entered;
    unit = 0;
    offset = 0;
    if (!isInLine() || line().origin != 0 || !line().bytes.starts_with(kByteOrderMark)) return;
    offset = kByteOrderMark.size();
    edited = kByteOrderMark;
  }

  void clearLines(std::uint64_t first, std::uint64_t end) {
    for (std::uint64_t cleared = first; cleared < end; ++cleared) lines[cleared - 1].bytes.clear();
  }

  bool isInLine() const { return number != 0 && number <= lines.size(); }
  Line& line() { return lines[number - 1]; }

  std::vector<Line>& lines;
  /// The 1-based number of the current line; 0 before the first one.
  std::uint64_t number = 0;
  /// The place in the line, in code units and in bytes.
  std::uint64_t unit = 0;
  std::size_t offset = 0;
  /// What the line up to that place becomes.
  std::string edited;
};

FixedText::FixedText(std::string_view bytes) : original(splitLines(bytes)) {
  lines.reserve(original.size());
  for (std::size_t i = 0; i < original.size(); ++i) lines.push_back({original[i], i});
}

std::size_t FixedText::apply(std::span<const Fix* const> fixes) {
  Selection selection;
  std::size_t count = 0;
  for (const Fix* fix : fixes) {
    if (selection.take(*fix)) ++count;
  }
  if (count == 0) return 0;
  Editor editor(lines);
  for (const Edit* edit : selection.takenEdits()) editor.apply(*edit);
  editor.finish();
  normalize();
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
