#include "tessera/check/suspects/findRepair.hpp"

#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::suspects {

using namespace scan;
namespace {

using namespace std::string_view_literals;
using catalogue::Fix;

bool isBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}

/// Collects the changes that make the text a marker.
class RepairSearch {
 public:
  explicit RepairSearch(const DamagedText& text) : text(text) {}

  void run() {
    const std::uint64_t at = text.problem;
    const std::uint64_t afterWord = skipBlanksBack(at);
    for (const auto inserted : {u">"sv, u"]"sv, u"}"sv, u","sv, u":"sv, u"\""sv, u"["sv, u"{"sv}) {
      // Where blanks precede the problem, the character belongs before them.
      const bool isBeforeBlanks = afterWord != at && attempt({afterWord, 0, inserted});
      if (!isBeforeBlanks) attempt({at, 0, inserted});
    }
    tryReplacements(at);
    tryRemovals(at, afterWord);
    // "<@task t1>": the "#" was lost.
    if (afterWord + 1 == at) attempt({afterWord, 1, u"#"});
  }

  std::vector<Replacement> found;

 private:
  std::uint64_t skipBlanksBack(std::uint64_t at) const {
    while (at > text.begin && isBlank(text.line[at - 1])) --at;
    return at;
  }

  bool attempt(const Replacement& replacement) {
    const bool isRepaired = isRepairedBy(text, replacement);
    if (isRepaired) found.push_back(replacement);
    return isRepaired;
  }

  /// Tries what is written in place of another bracket or separator.
  void tryReplacements(std::uint64_t at) {
    if (at == text.end) return;
    constexpr std::u16string_view kClosing = u")]}>";
    constexpr std::u16string_view kOpening = u"([{<";
    constexpr std::u16string_view kSeparators = u",;.:=";
    const char16_t unit = text.line[at];
    for (const auto& [group, replacements] :
         {std::pair(kClosing, u"]}>"sv), std::pair(kOpening, u"[{"sv),
          std::pair(kSeparators, u",:"sv)}) {
      if (group.find(unit) == group.npos) continue;
      for (std::size_t i = 0; i < replacements.size(); ++i) {
        if (replacements[i] != unit) attempt({at, 1, replacements.substr(i, 1)});
      }
    }
  }

  /// Tries to remove a character that is written twice, and a comma after the last member.
  void tryRemovals(std::uint64_t at, std::uint64_t afterWord) {
    const auto isPunctuation = [this](std::uint64_t position) {
      return u"<@>[]{}(),:#\"-"sv.find(text.line[position]) != std::u16string_view::npos;
    };
    if (at < text.end && at > text.begin && isPunctuation(at) &&
        text.line[at] == text.line[at - 1]) {
      attempt({at, 1, u""});
    }
    if (afterWord > text.begin && text.line[afterWord - 1] == u',')
      attempt({afterWord - 1, 1, u""});
  }

  const DamagedText& text;
};

std::string describe(const DamagedText& text, const Replacement& replacement) {
  const std::u16string_view removed = text.line.substr(replacement.begin, replacement.length);
  if (removed.empty()) return "insert " + quoted(replacement.text);
  if (replacement.text.empty()) return "remove " + quoted(removed);
  return "replace " + quoted(removed) + " by " + quoted(replacement.text);
}

}  // namespace

bool isRepairedBy(const DamagedText& text, const Replacement& replacement) {
  std::u16string patched(text.line.substr(text.begin, text.end - text.begin));
  patched.replace(replacement.begin - text.begin, replacement.length, replacement.text);
  const auto candidates = quenlith::syntax::findMarkerCandidates(patched);
  if (candidates.size() != 1 || candidates[0].problem != quenlith::syntax::MarkerProblem::kNone) {
    return false;
  }
  const std::u16string_view rest =
      std::u16string_view(patched).substr(candidates[0].problemPosition);
  const bool isEnd = rest.find_first_not_of(u" \t") == rest.npos;
  if (candidates[0].position != 0) return false;
  return isEnd || (replacement.text != u">" && isBlank(rest.front()));
}

Fix makeFix(const DamagedText& text, const Replacement& replacement) {
  Fix fix;
  fix.description = describe(text, replacement);
  fix.edits.push_back({catalogue::spanOf(text.lineNumber, replacement.begin,
                                         replacement.begin + replacement.length),
                       fl::i18n::ustring_to_utf8(replacement.text)});
  return fix;
}

std::optional<Fix> findRepair(const DamagedText& text) {
  RepairSearch search(text);
  search.run();
  if (search.found.size() != 1) return std::nullopt;
  return makeFix(text, search.found.front());
}

}  // namespace tessera::check::suspects
