#include <utility>

#include "oracle/line/LineCase.hpp"

namespace quenlith::oracle {

namespace {

/// Assigns `candidate` to `lineCase` if the twin and the real parser still differ on it.
bool accept(LineCase& lineCase, LineCase candidate) {
  if (agree(candidate)) return false;
  lineCase = std::move(candidate);
  return true;
}

template <class List>
bool dropOneOf(LineCase& lineCase, List LineCase::*list) {
  for (std::size_t i = 0; i < (lineCase.*list).size(); ++i) {
    LineCase candidate = lineCase;
    auto& shorter = candidate.*list;
    shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
    if (accept(lineCase, std::move(candidate))) return true;
  }
  return false;
}

bool dropOneRule(LineCase& lineCase, std::vector<AnswerRule> WorldPlan::*rules) {
  for (std::size_t i = 0; i < (lineCase.plan.*rules).size(); ++i) {
    LineCase candidate = lineCase;
    auto& shorter = candidate.plan.*rules;
    shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
    if (accept(lineCase, std::move(candidate))) return true;
  }
  return false;
}

bool dropText(LineCase& lineCase, std::size_t line, std::size_t length) {
  for (std::size_t i = 0; i + length <= lineCase.lines[line].size(); ++i) {
    LineCase candidate = lineCase;
    candidate.lines[line].erase(i, length);
    if (accept(lineCase, std::move(candidate))) return true;
  }
  return false;
}

bool shortenLines(LineCase& lineCase) {
  bool changed = false;
  for (std::size_t line = 0; line < lineCase.lines.size(); ++line) {
    for (std::size_t length = lineCase.lines[line].size(); length > 0; length /= 2) {
      while (dropText(lineCase, line, length)) changed = true;
    }
  }
  return changed;
}

}  // namespace

LineCase shrink(LineCase lineCase) {
  while (dropOneOf(lineCase, &LineCase::lines)) continue;
  while (dropOneRule(lineCase, &WorldPlan::contributorParsers)) continue;
  while (dropOneRule(lineCase, &WorldPlan::codeElementParsers)) continue;
  while (shortenLines(lineCase)) continue;
  return lineCase;
}

}  // namespace quenlith::oracle
