#include "tessera/check/rules/followingText.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::rules {

using namespace scan;

namespace {

bool isWordUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z');
}

std::u16string wordAt(std::u16string_view text) {
  const auto end = std::ranges::find_if_not(text, isWordUnit);
  return std::u16string(text.begin(), end);
}

}  // namespace

void checkFollowingText(const FileScan& scan, Findings& findings) {
  for (const FoundMarker& marker : scan.code) {
    const bool isLineComment =
        marker.isMarker() && marker.parts.comment == quenlith::syntax::CommentForm::kLine;
    if (!isLineComment || marker.isOnAmbiguousLine || marker.end() == marker.lineText.size())
      continue;
    const std::uint64_t at = marker.end();
    const char16_t unit = marker.lineText[at];
    if (unit != u'>' && !isWordUnit(unit)) continue;
    suspects::Suspect suspect;
    suspect.diagnostic = catalogue::makeDiagnostic(catalogue::DiagnosticKind::kTextAfterMarker, 0,
                                                   marker.spanOf(at, at + 1),
                                                   {quoted(marker.lineText.substr(at, 1))});
    suspect.element = marker.parts.element;
    suspect.takenId = marker.id;
    if (unit == u'>') {
      suspect.diagnostic.fix = {"remove \">\"", {{marker.spanOf(at, at + 1), ""}}};
    } else {
      suspect.ids.push_back(marker.id + wordAt(marker.lineText.substr(at)));
    }
    findings.suspects.code.push_back(std::move(suspect));
  }
}

}  // namespace tessera::check::rules
