#include "tessera/Problem.hpp"

#include <utility>

#include "tessera/output/terminalText.hpp"

namespace tessera {

std::string describe(const Problem& problem) {
  std::string text = problem.file.empty() ? "\"\"" : output::terminalText(problem.file);
  if (problem.place) {
    text += ':' + std::to_string(problem.place->line) + ':' + std::to_string(problem.place->column);
  }
  text += ": error: " + output::terminalText(problem.what);
  if (!problem.remedy.empty()) text += "; " + output::terminalText(problem.remedy);
  return text;
}

ProblemError::ProblemError(Problem problem) : found(std::move(problem)), text(describe(found)) {}

}  // namespace tessera
