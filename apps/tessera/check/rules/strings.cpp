#include "tessera/check/rules/strings.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/StringLexer.hpp"

namespace tessera::check::rules {

using namespace scan;

namespace {

class StringRule {
 public:
  StringRule(const FileScan& scan, const StringSyntax& syntax, Findings& findings)
      : scan(scan), code(scan.lines.code()), lexer(code, syntax), findings(findings) {
    for (std::size_t i = 0; i < findings.diagnostics.size(); ++i) {
      const auto& known = findings.diagnostics[i];
      if (known.kind == catalogue::DiagnosticKind::kMissingTaskMarkerPair)
        unpaired.emplace(known.span, i);
    }
  }

  void check(const FoundMarker& marker) {
    const auto opening =
        scan.escaped.inFile(marker.spanOf(marker.parts.opening, marker.parts.opening));
    const auto found = lexer.stringAt(startOf(marker.line) + opening.begin.unit);
    if (!found || explainUnpaired(marker)) return;
    if (isSameCause(*found)) {
      findings.diagnostics[diagnostic].notes.push_back({marker.span(), "this one, too"});
    } else {
      diagnostic = findings.diagnostics.size();
      findings.diagnostics.push_back(catalogue::makeDiagnostic(
          catalogue::DiagnosticKind::kMarkerInString, 0, marker.span(), {}));
      noteStart(marker, *found);
    }
    last = found;
  }

 private:
  /// A task marker that only seems to be one has no partner.
  bool explainUnpaired(const FoundMarker& marker) {
    const auto known = unpaired.find(marker.span());
    if (known == unpaired.end()) return false;
    findings.diagnostics[known->second].notes.push_back(
        {marker.span(), catalogue::messageOf(catalogue::DiagnosticKind::kMarkerInString, 0, {})});
    return true;
  }

  /// Returns whether the string is the one of the marker before, or both may be strings only
  /// because a quote is missing or too much before them.
  bool isSameCause(const FoundString& found) const {
    if (!last) return false;
    return last->begin == found.begin || (last->mayBeReversed && found.mayBeReversed);
  }

  /// The string may begin far before its marker.
  void noteStart(const FoundMarker& marker, const FoundString& found) {
    const std::size_t quote = found.begin - 1;
    while (line < marker.line && startOf(line + 1) <= quote) ++line;
    // The positions of an escaped line are others than those in the file.
    const bool isEscaped = scan.line(line).size() != scan.lines.line(line).size();
    if (line == marker.line || isEscaped) return;
    const std::uint64_t unit = quote - startOf(line);
    findings.diagnostics[diagnostic].notes.push_back(
        {catalogue::spanOf(line, unit, unit + 1), "the string begins here"});
  }

  std::size_t startOf(std::uint64_t number) const {
    return static_cast<std::size_t>(scan.lines.line(number).data() - code.data());
  }

  const FileScan& scan;
  std::u16string_view code;
  StringLexer lexer;
  Findings& findings;
  // The diagnostics about task markers without a partner.
  std::map<catalogue::Span, std::size_t> unpaired;
  std::optional<FoundString> last;
  // The diagnostic about the string `last`.
  std::size_t diagnostic = 0;
  // The line in which the last string that was reported begins.
  std::uint64_t line = 1;
};

}  // namespace

void checkStrings(const FileScan& scan, std::string_view path, Findings& findings) {
  const StringSyntax* const syntax = stringSyntaxOf(path);
  if (syntax == nullptr || scan.code.empty()) return;
  StringRule rule(scan, *syntax, findings);
  for (const FoundMarker& marker : scan.code) {
    if (marker.isMarker()) rule.check(marker);
  }
}

}  // namespace tessera::check::rules
