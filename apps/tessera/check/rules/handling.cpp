#include "tessera/check/rules/handling.hpp"

#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"
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

/// Reports a text marker that is not an anchor.
Diagnostic describeType(const FoundMarker& marker) {
  const std::u16string_view type = marker.parts.type;
  if (type.empty()) {
    return catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeAbsent,
                                     marker.spanOf(marker.parts.element), {});
  }
  const auto span = marker.spanOf(type);
  if (spelling::areSimilar(type, kAnchor)) {
    Diagnostic diagnostic = catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeSimilar,
                                                      span, {quoted(type), quoted(kAnchor)});
    diagnostic.fix = {"replace " + quoted(type) + " by " + quoted(kAnchor), {{span, "anchor"}}};
    return diagnostic;
  }
  const bool isJoined = type.starts_with(kAnchor) && marker.parts.id.empty();
  if (!isJoined) {
    return catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeOther, span,
                                     {quoted(type)});
  }
  // "<@text:anchorfit>": the "#" was lost.
  const std::u16string meant = std::u16string(kAnchor) + u"#" + std::u16string(type.substr(6));
  Diagnostic diagnostic = catalogue::makeDiagnostic(DiagnosticKind::kUnknownType, kTypeSimilar,
                                                    span, {quoted(type), quoted(meant)});
  const std::uint64_t at = marker.positionOf(type) + kAnchor.size();
  diagnostic.fix = {"insert \"#\"", {{marker.spanOf(at, at), "#"}}};
  return diagnostic;
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
