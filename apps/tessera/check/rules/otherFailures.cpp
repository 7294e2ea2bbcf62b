#include "tessera/check/rules/otherFailures.hpp"

#include <algorithm>
#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::rules {

using namespace scan;
namespace {

using catalogue::Span;

/// Returns the span of the first marker of the line that the failure may be about; else that of the
/// line.
Span spanOf(const FileScan& scan, const RecordedFailure& failure) {
  for (const FoundMarker& marker : scan.codeOfLine(failure.line)) {
    const bool isSame = marker.isMarker() && marker.parts.element == failure.element &&
                        marker.id == failure.markerId;
    if (isSame) return marker.span();
  }
  return catalogue::spanOf(failure.line, 0, scan.line(failure.line).size());
}

}  // namespace

void reportOtherFailures(const FileScan& scan, std::span<const RecordedFailure> failures,
                         Findings& findings) {
  for (const RecordedFailure& failure : failures) {
    const std::string marker =
        plainText(failure.element) + " marker " +
        (failure.markerId.empty() ? "without an id" : quoted(failure.markerId));
    findings.diagnostics.push_back(
        catalogue::makeDiagnostic(catalogue::DiagnosticKind::kParserFailure, 0,
                                  spanOf(scan, failure), {marker, plainText(failure.failureId)}));
  }
}

}  // namespace tessera::check::rules
