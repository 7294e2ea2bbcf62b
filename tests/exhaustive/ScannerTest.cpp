#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exhaustive/Run.hpp"
#include "oracle/markers/MarkerTwin.hpp"
#include "oracle/support/compareScans.hpp"

// The scanner and its twin agree on every text of up to seven units of an alphabet. Seven single
// characters contain no marker of a known element, so units are whole tokens where a marker has
// many characters: "<@" and a name.

namespace quenlith::exhaustive {
namespace {

using oracle::TwinMarker;

using Text = std::u16string_view;

constexpr Text kHighSurrogate = u"\xD83D";
constexpr Text kLowSurrogate = u"\xDE00";

struct Alphabet {
  /// What precedes the units.
  Text start;
  std::vector<Text> units;
};

// What surrounds a marker: leaders, openers and closers with runs of any length up to the number of
// units, and names before and after them. ";" is left out, which the grammar has only in the list
// of leaders, beside "%" and "#"; "!" is in "<!", and "rem" is spelt like "REM".
Alphabet comments() {
  return {u"",
          {u"<@", u"text", u">", u"#", u"%", u"/", u"*", u"-", u"--", u"<!", u"(", u")", u"{", u"}",
           u" ", u"REM"}};
}

// Type, id and strings, and whatever may be in them. "ud83d" and "ude00" are names, or halves of a
// pair after a backslash.
Alphabet names() {
  return {u"#<@task",
          {u":", u"#", u"\"", u"\\", u"a", u"ud83d", u"ude00", kHighSurrogate, kLowSurrogate, u" ",
           u">", u"#<@"}};
}

// Range and data, and data after a range.
Alphabet rangeAndDataAfter(Text start) {
  return {start,
          {u"[", u"[7,", u"]", u",", u"7", u"18446744073709551616", u"-", u"{", u"}", u"\"a\":",
           u" ", u">"}};
}

// Compares every text on its own, and the texts that differ in their last unit also as the lines of
// one text, in which the vector search meets them at every offset.
class ScannerComparison {
 public:
  ScannerComparison(const Alphabet& alphabet, std::size_t first, std::size_t second)
      : alphabet(alphabet), text(alphabet.start) {
    // The shorter texts, each in one part of the run.
    if (first == 0 && second == 0) compareText();
    text += alphabet.units[first];
    if (second == 0) compareText();
    text += alphabet.units[second];
    compareText();
  }

  // Compares all texts that extend the text by up to `more` units.
  void extend(std::size_t more) {
    if (more == 0) return;
    Joined joined;
    for (const Text unit : alphabet.units) {
      const std::size_t size = text.size();
      text += unit;
      compareText();
      append(joined);
      extend(more - 1);
      text.resize(size);
      if (!outcome.difference.empty()) return;
    }
    note(oracle::compareScans(joined.text, joined.known, joined.any));
  }

  const Outcome& getOutcome() const { return outcome; }

 private:
  struct Joined {
    std::u16string text;
    std::vector<TwinMarker> known;
    std::vector<TwinMarker> any;
  };

  void compareText() {
    known.clear();
    any.clear();
    // Every marker contains it, and the twin takes long.
    if (text.find(u"<@") != Text::npos) {
      known = oracle::twinMarkers(text, false);
      any = oracle::twinMarkers(text, true);
    }
    ++outcome.cases;
    outcome.occurrences += known.size();
    note(oracle::compareScans(text, known, any));
  }

  void append(Joined& joined) {
    const auto move = [&](std::vector<TwinMarker>& from, std::vector<TwinMarker>& to) {
      for (TwinMarker& marker : from) {
        marker.position += joined.text.size();
        to.push_back(std::move(marker));
      }
    };
    move(known, joined.known);
    move(any, joined.any);
    joined.text += text;
    joined.text += u'\n';
  }

  void note(const std::string& difference) {
    if (outcome.difference.empty()) outcome.difference = difference;
  }

  const Alphabet& alphabet;
  std::u16string text;
  std::vector<TwinMarker> known;
  std::vector<TwinMarker> any;
  Outcome outcome;
};

void compareTexts(const std::string& name, const Alphabet& alphabet, std::size_t units) {
  const auto part = [&](std::size_t first, std::size_t second) {
    ScannerComparison comparison(alphabet, first, second);
    comparison.extend(units - kSpread);
    return comparison.getOutcome();
  };
  const Outcome outcome = forEachPair(alphabet.units.size(), Threads::kAll, part);
  report(name + " of up to " + std::to_string(units) + " units", outcome, "markers");
}

TEST(ExhaustiveScanner, AgreesWithTheTwinOnAllComments) {
  // One unit more, because the shortest marker has four units and the shortest block comment seven.
  compareTexts("comments", comments(), std::min(unitsOfThisRun() + 1, kWholeUnits));
}

TEST(ExhaustiveScanner, AgreesWithTheTwinOnAllTypesAndIds) {
  compareTexts("types and ids", names(), unitsOfThisRun());
}

TEST(ExhaustiveScanner, AgreesWithTheTwinOnAllRangesAndData) {
  compareTexts("ranges and data", rangeAndDataAfter(u"#<@task"), unitsOfThisRun());
}

TEST(ExhaustiveScanner, AgreesWithTheTwinOnAllDataAfterARange) {
  compareTexts("data after a range", rangeAndDataAfter(u"#<@task [7,7]"), unitsOfThisRun() - 1);
}

}  // namespace
}  // namespace quenlith::exhaustive
