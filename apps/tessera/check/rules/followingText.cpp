#include "tessera/check/rules/followingText.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/commentEnd.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::rules {

using namespace scan;

namespace {

bool isWordUnit(char16_t unit) {
  const auto lower = static_cast<char16_t>(unit | 0x20U);
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z');
}

/// Returns whether `rest` begins with what ends the code of a template, a processing instruction, a
/// section or an element of XML.
bool startsWithBlockEnd(std::u16string_view rest) {
  constexpr std::array<std::u16string_view, 8> kBlockEnds{u"%>", u"#>", u"?>",   u"]]>",
                                                          u"</", u"/>", u"\"/>", u"'/>"};
  rest.remove_prefix(std::min(rest.find_first_not_of(u'-'), rest.size()));
  return std::ranges::any_of(kBlockEnds,
                             [rest](std::u16string_view end) { return rest.starts_with(end); });
}

/// Returns whether `rest`, which directly follows a marker, was probably meant to be inside: a
/// word, or text that ends like a marker itself. Only a range or data contains blanks.
bool isPartOfMarker(std::u16string_view rest) {
  const char16_t unit = rest.front();
  if (isBlank(unit) || startsWithBlockEnd(rest)) return false;
  if (unit == u'>' || isWordUnit(unit)) return true;
  const bool mayHaveBlanks = unit == u'[' || unit == u'{';
  rest = rest.substr(0, rest.find(u"<@"));
  if (!mayHaveBlanks) rest = rest.substr(0, rest.find_first_of(u" \t"));
  return rest.find(u'>') != rest.npos;
}

suspects::Suspect describeRest(const FoundMarker& marker) {
  const std::uint64_t at = marker.end();
  const std::u16string_view rest = marker.lineText.substr(at);
  suspects::Suspect suspect;
  suspect.diagnostic =
      catalogue::makeDiagnostic(catalogue::DiagnosticKind::kTextAfterMarker, 0,
                                marker.spanOf(at, at + 1), {quoted(rest.substr(0, 1))});
  suspect.element = marker.parts.element;
  suspect.takenId = marker.id;
  if (rest.front() == u'>') {
    suspect.diagnostic.fix = {"remove \">\"", {{marker.spanOf(at, at + 1), ""}}};
  } else {
    suspect.ids.push_back(marker.id + std::u16string(nameAtStartOf(rest)));
  }
  return suspect;
}

suspects::Suspect describeCommentEnd(const FoundMarker& marker, std::u16string_view commentEnd) {
  suspects::Suspect suspect;
  suspect.diagnostic = catalogue::makeDiagnostic(
      catalogue::DiagnosticKind::kUnclosedComment, catalogue::forms::kOpenerAbsent,
      marker.spanOf(commentEnd), {quoted(commentEnd), quoted(openerOf(commentEnd))});
  suspect.element = marker.parts.element;
  suspect.takenId = marker.id;
  return suspect;
}

/// Returns whether the marker is in a block comment after all, because its leader took the place of
/// a blank: "/*;<@task> */".
bool isLeaderTyped(const FoundMarker& marker) {
  const std::uint64_t position = marker.parts.position;
  const char16_t before = position == 0 ? u' ' : marker.lineText[position - 1];
  return marker.parts.opening == position + 1 && (before == u'*' || before == u'-');
}

suspects::Suspect describeTypedLeader(const FoundMarker& marker) {
  const std::uint64_t position = marker.parts.position;
  suspects::Suspect suspect;
  suspect.diagnostic = catalogue::makeDiagnostic(
      catalogue::DiagnosticKind::kMissingLeader, catalogue::forms::kLeaderReplacedBlank,
      marker.spanOf(position, position + 1), {quoted(marker.lineText.substr(position, 1))});
  suspect.element = marker.parts.element;
  suspect.takenId = marker.id;
  return suspect;
}

}  // namespace

void checkFollowingText(const FileScan& scan, Findings& findings) {
  const FoundMarker* before = nullptr;
  for (const FoundMarker& marker : scan.code) {
    // A text that is not a marker may begin the comment that this one is in.
    if (!marker.isMarker()) continue;
    const bool isOnLine = before != nullptr && before->line == marker.line;
    const std::uint64_t floor = isOnLine ? before->end() : 0;
    before = &marker;
    const bool isLineComment = marker.parts.comment == quenlith::syntax::CommentForm::kLine;
    if (!isLineComment || marker.isOnAmbiguousLine || marker.end() == marker.lineText.size())
      continue;
    const std::u16string_view rest = marker.lineText.substr(marker.end());
    const std::u16string_view commentEnd = commentEndAt(rest);
    if (!commentEnd.empty()) {
      const auto text = marker.lineText.substr(floor, marker.parts.position - floor);
      const bool isInComment = text.find(openerOf(commentEnd)) != text.npos;
      if (!isInComment) {
        findings.suspects.code.push_back(describeCommentEnd(marker, commentEnd));
      } else if (isLeaderTyped(marker)) {
        findings.suspects.code.push_back(describeTypedLeader(marker));
      }
    } else if (isPartOfMarker(rest)) {
      findings.suspects.code.push_back(describeRest(marker));
    }
  }
}

}  // namespace tessera::check::rules
