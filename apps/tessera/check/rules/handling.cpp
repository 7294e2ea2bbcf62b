#include "tessera/check/rules/handling.hpp"

#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
#include "tessera/check/suspects/likeness.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using namespace std::string_view_literals;
using namespace catalogue::forms;
using catalogue::Diagnostic;
using catalogue::DiagnosticKind;
using quenlith::syntax::Marker;

constexpr std::u16string_view kAnchor = u"anchor";

/// Returns the id that was probably joined to the type: "<@text:anchorfit>" or
/// "<@text:anchor-fit>", not "<@text:anchors>". Empty if none was.
std::u16string_view joinedId(const FoundMarker& marker) {
  const std::u16string_view type = marker.parts.type;
  if (!type.starts_with(kAnchor) || !marker.parts.id.empty() || type == u"anchors") return {};
  return suspects::afterSeparator(type.substr(kAnchor.size()));
}

/// Reports an anchor without the "#" before its id, or with another character in its place.
Diagnostic describeJoinedId(const FoundMarker& marker, std::u16string_view id) {
  const std::u16string_view type = marker.parts.type;
  std::u16string meant(kAnchor);
  meant.append(u"#").append(id);
  Diagnostic diagnostic =
      catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeSimilar, marker.spanOf(type),
                                {quoted(type), quoted(meant)});
  const std::uint64_t begin = marker.positionOf(type) + kAnchor.size();
  const std::uint64_t end = marker.positionOf(id);
  const std::string description =
      begin == end ? "insert \"#\""
                   : "replace " + quoted(marker.lineText.substr(begin, 1)) + " by \"#\"";
  diagnostic.fix = {description, {{marker.spanOf(begin, end), "#"}}};
  return diagnostic;
}

/// Reports a text marker that is not an anchor.
Diagnostic describeType(const FoundMarker& marker) {
  const std::u16string_view type = marker.parts.type;
  if (type.empty()) {
    return catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeAbsent,
                                     marker.spanOf(marker.parts.element), {});
  }
  const std::u16string_view joined = joinedId(marker);
  if (!joined.empty()) return describeJoinedId(marker, joined);
  const auto span = marker.spanOf(type);
  if (spelling::areSimilar(type, kAnchor)) {
    Diagnostic diagnostic = catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeSimilar,
                                                      span, {quoted(type), quoted(kAnchor)});
    diagnostic.fix = {"replace " + quoted(type) + " by " + quoted(kAnchor), {{span, "anchor"}}};
    return diagnostic;
  }
  return catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeOther, span, {quoted(type)});
}

}  // namespace

void checkHandling(const FileScan& scan, const IsAccepted& isAccepted, Findings& findings) {
  for (const FoundMarker& marker : scan.code) {
    if (!marker.isMarker() || marker.isOnAmbiguousLine) continue;
    const bool isControl = marker.parts.element == u"control";
    const bool isOtherText = marker.parts.element == u"text" && !marker.isAnchor();
    if (!isControl && !isOtherText) continue;
    if (isAccepted(Marker(std::u16string(marker.text())))) continue;
    if (isControl) {
      findings.diagnostics.push_back(catalogue::makeDiagnostic(
          DiagnosticKind::kUnhandledMarker, 0, marker.span(), {plainText(marker.parts.element)}));
    } else {
      findings.diagnostics.push_back(describeType(marker));
    }
  }
}

}  // namespace tessera::check::rules
