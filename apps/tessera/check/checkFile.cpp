#include "tessera/check/checkFile.hpp"

#include <algorithm>
#include <utility>

#include "tessera/check/rules/appendix.hpp"
#include "tessera/check/rules/parserFailures.hpp"

namespace tessera::check {

using catalogue::CheckedFile;
using catalogue::Diagnostic;

CheckedFile checkFile(std::string path, session::ParsedFile file) {
  CheckedFile checked;
  checked.path = std::move(path);
  rules::checkParserFailures(file.snippet, checked.diagnostics);
  rules::checkAppendix(file.source, file.snippet.code.text, checked.diagnostics);
  std::ranges::stable_sort(checked.diagnostics, {},
                           [](const Diagnostic& diagnostic) { return diagnostic.span.begin; });
  checked.lines =
      source::SourceLines(std::move(file.snippet.code), std::move(file.source.appendixLineText),
                          std::move(file.source.appendix));
  return checked;
}

}  // namespace tessera::check
