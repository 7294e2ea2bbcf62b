#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <set>
#include <string>

#include "MarkerTwin.hpp"
#include "RandomMarkers.hpp"
#include "fl/i18n/ustring.hpp"
#include "oracle/support/RunSettings.hpp"
#include "oracle/support/compareScans.hpp"
#include "quenlith/syntax/MarkerCandidate.hpp"

namespace quenlith::oracle {
namespace {

using fl::i18n::ustring;
using fl::i18n::ustring_to_utf8;
using syntax::MarkerProblem;

constexpr std::size_t kTexts = 200'000;
constexpr std::size_t kLeast = 1'000;

bool isKnown(std::u16string_view element) {
  return element == u"control" || element == u"output" || element == u"task" || element == u"text";
}

// Counts how many of the random texts and markers have each feature.
class FeatureCounts {
 public:
  void count(const ustring& text, const std::vector<TwinMarker>& known,
             const std::vector<TwinMarker>& any) {
    add("texts with a marker", !known.empty());
    add("texts with an opening and no marker", known.empty() && text.find(u"<@") != ustring::npos);
    add("texts with several markers", known.size() > 1);
    add("texts with an unknown element", any.size() > known.size());
    add("texts where an unknown element hides a marker", hides(known, any));
    add("texts with a damaged marker", !syntax::findDamagedMarkers(text).empty());
    countProblems(text);
    for (const TwinMarker& marker : known) {
      countMarker(text.substr(marker.position, marker.length), marker);
    }
  }

  void print() const {
    for (const auto& [name, count] : counts) {
      std::cout << name << ": " << count << "\n";
    }
  }

  void expectAtLeast(std::size_t least) const {
    for (const auto& [name, count] : counts) {
      EXPECT_GE(count, least) << name;
    }
  }

 private:
  void add(const std::string& name, bool seen) { counts[name] += seen ? 1U : 0U; }

  static bool hides(const std::vector<TwinMarker>& known, const std::vector<TwinMarker>& any) {
    std::size_t alsoKnown = 0;
    for (const TwinMarker& marker : any) {
      alsoKnown += isKnown(marker.element) ? 1U : 0U;
    }
    return alsoKnown < known.size();
  }

  void countProblems(const ustring& text) {
    std::set<MarkerProblem> problems;
    for (const auto& damaged : syntax::findDamagedMarkers(text)) {
      problems.insert(damaged.problem);
    }
    for (auto problem = MarkerProblem::kMissingElement; problem <= MarkerProblem::kBadAppendixLine;
         problem = static_cast<MarkerProblem>(static_cast<int>(problem) + 1)) {
      add(std::string("texts in which ") + syntax::describe(problem), problems.contains(problem));
    }
  }

  void countMarker(const ustring& text, const TwinMarker& marker) {
    for (const ustring start : {u"/*", u"(*", u"<!--", u"{-", u"!", u";", u"REM", u"rem"}) {
      add("markers that begin with " + ustring_to_utf8(start), text.starts_with(start));
    }
    add("markers with a type", !marker.type.empty());
    add("markers with a quoted id", text.find(u"#\"") != ustring::npos && !marker.id.empty());
    add("markers with a range", marker.range.has_value());
    add("markers with a saturated range", marker.range && marker.range->first + 1 == 0);
    add("markers with data", !marker.data.empty());
    add("markers with an opening inside", text.find(u"<@", text.find(u"<@") + 1) != ustring::npos);
    add("markers with escapes", text.find(u'\\') != ustring::npos);
    add("markers at the greatest depth", text.find(ustring(62, u'[')) != ustring::npos);
  }

  std::map<std::string, std::size_t> counts;
};

void compareText(const ustring& text, FeatureCounts& counts) {
  const auto known = twinMarkers(text, false);
  const auto any = twinMarkers(text, true);
  EXPECT_EQ(compareScans(text, known, any), "");
  counts.count(text, known, any);
}

TEST(MarkersOracle, TheScannerAgreesWithTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kTexts);
  FeatureCounts counts;
  if (settings.only) {
    compareText(RandomMarkers(settings.seedOf(*settings.only)).text(), counts);
    return;
  }
  for (std::size_t number = 0; number < settings.cases; ++number) {
    compareText(RandomMarkers(settings.seedOf(number)).text(), counts);
    if (HasFailure()) FAIL() << settings.repeatHint(number);
  }
  counts.print();
  counts.expectAtLeast(settings.leastOf(kLeast));
}

}  // namespace
}  // namespace quenlith::oracle
