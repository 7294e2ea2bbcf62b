#include "tessera/check/rules/strings.hpp"

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/StringLexer.hpp"

namespace tessera::check::rules {

using namespace scan;

void checkStrings(const FileScan& scan, std::string_view path, Findings& findings) {
  const StringSyntax* const syntax = stringSyntaxOf(path);
  if (syntax == nullptr || scan.code.empty()) return;
  const std::u16string_view code = scan.lines.code();
  StringLexer lexer(code, *syntax);
  for (const FoundMarker& marker : scan.code) {
    if (!marker.isMarker()) continue;
    const auto lineStart =
        static_cast<std::size_t>(scan.lines.line(marker.line).data() - code.data());
    const auto opening =
        scan.escaped.inFile(marker.spanOf(marker.parts.opening, marker.parts.opening));
    if (!lexer.isInString(lineStart + opening.begin.unit)) continue;
    findings.diagnostics.push_back(catalogue::makeDiagnostic(
        catalogue::DiagnosticKind::kMarkerInString, 0, marker.span(), {}));
  }
}

}  // namespace tessera::check::rules
