#include "tessera/diagnostics/Problem.hpp"

#include <utility>

#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::diagnostics {

std::string describe(const Problem& problem) {
  std::string text = problem.file.empty() ? "\"\"" : terminalText(problem.file);
  if (problem.place) {
    text += ':' + std::to_string(problem.place->line) + ':' + std::to_string(problem.place->column);
  }
  text += ": error: " + terminalText(problem.what);
  if (!problem.remedy.empty()) text += "; " + terminalText(problem.remedy);
  return text;
}

ProblemError::ProblemError(Problem found) : found(std::move(found)), text(describe(this->found)) {}

}  // namespace tessera::diagnostics
