#include "tessera/check/suspects/findRepair.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/Marker.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "tessera/check/scan/commentEnd.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::suspects {

using namespace scan;

namespace {

using namespace std::string_view_literals;
using catalogue::Fix;
using quenlith::syntax::Marker;

/// Returns whether `text` is a marker, with nothing after it, or a blank if `mayContinue`.
bool isWhole(std::u16string_view text, bool mayContinue) {
  const auto candidates = quenlith::syntax::findMarkerCandidates(text);
  if (candidates.size() != 1 || candidates[0].position != 0 ||
      candidates[0].problem != quenlith::syntax::MarkerProblem::kNone) {
    return false;
  }
  const std::u16string_view rest = text.substr(candidates[0].problemPosition);
  const bool isEnd = rest.find_first_not_of(u" \t") == rest.npos;
  return isEnd || (mayContinue && isBlank(rest.front()));
}

std::string describe(const DamagedText& text, const Replacement& replacement) {
  const std::u16string_view removed = text.line.substr(replacement.begin, replacement.length);
  if (removed.empty()) return "insert " + quoted(replacement.text);
  if (replacement.text.empty()) return "remove " + quoted(removed);
  return "replace " + quoted(removed) + " by " + quoted(replacement.text);
}

/// Collects the changes that make the text a marker.
class RepairSearch {
 public:
  explicit RepairSearch(const DamagedText& text) : text(text) {}

  void run() {
    const std::uint64_t at = text.problem;
    const std::uint64_t afterWord = skipBlanksBack(at);
    if (removeLastComma(at, afterWord)) return;
    for (const auto inserted : {u">"sv, u"]"sv, u"}"sv, u","sv, u":"sv, u"\""sv, u"["sv, u"{"sv}) {
      // A word after a missing quote may have taken the place of the quote: only a key can be
      // known.
      if (inserted == u"\"" && isWordAt(at) && !text.isKey) continue;
      // Where blanks precede the problem, the character belongs before them.
      const bool isBeforeBlanks = afterWord != at && attempt({afterWord, 0, inserted});
      if (!isBeforeBlanks) attempt({at, 0, inserted});
    }
    tryReplacements(at);
    tryRemovals(at, afterWord);
    for (std::uint64_t first = std::max(text.begin + 2, at) - 2; first <= at; ++first)
      trySwap(first);
    // "<@task t1>" and "<@text anchor#a>": the "#" or ":" was lost.
    if (afterWord + 1 != at || attempt({afterWord, 1, u"#"})) return;
    // A ":" that was lost in JSON is inserted beside the blank.
    if (!text.mayMoveNames) attempt({afterWord, 1, u":"});
  }

  /// Different changes may have the same result; a repair is certain only if there is one result.
  std::vector<Repair> found;

 private:
  std::uint64_t skipBlanksBack(std::uint64_t at) const {
    while (at > text.begin && isBlank(text.line[at - 1])) --at;
    return at;
  }

  bool attempt(const Replacement& replacement) {
    auto repair = repairBy(text, replacement);
    if (!repair) return false;
    const bool isKnown = std::ranges::any_of(
        found, [&repair](const Repair& other) { return other.text == repair->text; });
    if (!isKnown) found.push_back(std::move(*repair));
    return true;
  }

  /// Tries what is written in place of another bracket or separator.
  void tryReplacements(std::uint64_t at) {
    if (at == text.end) return;
    constexpr std::pair<std::u16string_view, std::u16string_view> kGroups[] = {
        {u")]}>", u"]}>"}, {u"([{<", u"[{"}, {u",;.:=", u",:#"}};
    const char16_t unit = text.line[at];
    for (const auto& [group, replacements] : kGroups) {
      if (group.find(unit) == group.npos) continue;
      for (std::size_t i = 0; i < replacements.size(); ++i) {
        if (replacements[i] != unit) attempt({at, 1, replacements.substr(i, 1)});
      }
    }
  }

  /// A comma before "}" is a habit from other languages, and hardly ever the end of a text.
  bool removeLastComma(std::uint64_t at, std::uint64_t afterWord) {
    return at < text.end && text.line[at] == u'}' && afterWord > text.begin &&
           text.line[afterWord - 1] == u',' && attempt({afterWord - 1, 1, u""});
  }

  bool isWordAt(std::uint64_t at) const {
    if (at == text.end) return false;
    const auto lower = static_cast<char16_t>(text.line[at] | 0x20U);
    return (lower >= u'a' && lower <= u'z') || (lower >= u'0' && lower <= u'9');
  }

  bool isPunctuation(std::uint64_t position) const {
    return u"<@>[]{}(),:#\"-"sv.find(text.line[position]) != std::u16string_view::npos;
  }

  /// Tries to remove a character that is written twice, and a comma before the problem.
  void tryRemovals(std::uint64_t at, std::uint64_t afterWord) {
    const bool isTwice = at < text.end && at > text.begin && text.line[at] == text.line[at - 1];
    if (isTwice && isPunctuation(at)) attempt({at, 1, u""});
    if (afterWord > text.begin && text.line[afterWord - 1] == u',')
      attempt({afterWord - 1, 1, u""});
  }

  /// Tries to swap two neighbours, of which one must be punctuation.
  void trySwap(std::uint64_t first) {
    if (first + 2 > text.end) return;
    const int count = (isPunctuation(first) ? 1 : 0) + (isPunctuation(first + 1) ? 1 : 0);
    if (count == 0 || (count == 1 && !text.mayMoveNames)) return;
    const std::u16string swapped{text.line[first + 1], text.line[first]};
    attempt({first, 2, swapped});
  }

  const DamagedText& text;
};

constexpr std::u16string_view kLeaderUnits = u"#%;!/-*";

/// Returns whether `next` is the end of something else than the marker before it, or an empty quote
/// line: "-->", "#>", "%>", "/>" or ">".
bool endsSomethingElse(std::u16string_view next) {
  if (!commentEndAt(next).empty()) return true;
  next.remove_prefix(std::min(next.find_first_not_of(u" \t"), next.size()));
  next.remove_prefix(std::min(next.find_first_not_of(kLeaderUnits), next.size()));
  return next.starts_with(u'>') && next.find_first_not_of(u" \t", 1) == next.npos;
}

/// Returns the position in `next` after blanks, the leader or opener of `text`, and blanks.
std::size_t skipLeader(const DamagedText& text, std::u16string_view next) {
  std::size_t at = std::min(next.find_first_not_of(u" \t"), next.size());
  const std::size_t opening = text.line.find(u'<', text.begin + 1);
  std::u16string_view leader = text.line.substr(text.begin, opening - text.begin);
  leader = leader.substr(0, leader.find_last_not_of(u" \t") + 1);
  if (leader.size() > 1 && next.substr(at).starts_with(leader)) at += leader.size();
  const char16_t unit = text.line[text.begin];
  if (kLeaderUnits.find(unit) != kLeaderUnits.npos)
    at = std::min(next.find_first_not_of(unit, at), next.size());
  return std::min(next.find_first_not_of(u" \t", at), next.size());
}

/// Returns the repair that removes the line break and the first `skipped` units of the next line,
/// and puts `between` there.
std::optional<Repair> joinAt(const DamagedText& text, std::size_t skipped,
                             std::u16string_view between) {
  std::u16string joined(text.line.substr(text.begin));
  joined += between;
  joined += text.nextLine->substr(skipped);
  if (!isWhole(joined, false)) return std::nullopt;
  Repair repair;
  repair.fix.description = "join this line and the next one";
  repair.fix.edits.push_back({{{text.lineNumber, text.line.size()}, {text.lineNumber + 1, skipped}},
                              fl::i18n::ustring_to_utf8(between)});
  repair.text = std::move(joined);
  return repair;
}

}  // namespace

std::optional<Repair> repairBy(const DamagedText& text, const Replacement& replacement) {
  Repair repair;
  repair.text = text.line.substr(text.begin, text.end - text.begin);
  repair.text.replace(replacement.begin - text.begin, replacement.length, replacement.text);
  if (!isWhole(repair.text, replacement.text != u">")) return std::nullopt;
  repair.fix.description = describe(text, replacement);
  repair.fix.edits.push_back({catalogue::spanOf(text.lineNumber, replacement.begin,
                                                replacement.begin + replacement.length),
                              fl::i18n::ustring_to_utf8(replacement.text)});
  return repair;
}

std::optional<Repair> findRepair(const DamagedText& text) {
  RepairSearch search(text);
  search.run();
  if (search.found.size() != 1) return std::nullopt;
  return std::move(search.found.front());
}

std::optional<Repair> joinLines(const DamagedText& text) {
  // Only the start of a long line is of interest, and a marker in it is not part of this one.
  if (!text.nextLine || text.end != text.line.size() ||
      text.nextLine->find(u"<@") != std::u16string_view::npos ||
      endsSomethingElse(*text.nextLine)) {
    return std::nullopt;
  }
  const std::size_t skipped = skipLeader(text, *text.nextLine);
  auto plain = joinAt(text, 0, u"");
  auto spaced = joinAt(text, skipped, u" ");
  // Whoever continues a comment on the next line breaks it at a blank.
  if (skipped > 0) {
    if (spaced) return spaced;
    return plain ? std::move(plain) : joinAt(text, skipped, u"");
  }
  // In a string it cannot be told whether a blank was lost.
  const bool isAmbiguous =
      plain && spaced && !isBlank(text.line.back()) && Marker(plain->text) != Marker(spaced->text);
  if (isAmbiguous) return std::nullopt;
  return plain ? std::move(plain) : std::move(spaced);
}

}  // namespace tessera::check::suspects
