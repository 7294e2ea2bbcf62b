#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz/Choices.hpp"
#include "fuzz/parsers/plans.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "oracle/support/scanLiterally.hpp"
#include "oracle/task/TaskCase.hpp"

namespace quenlith::fuzz {

using fl::i18n::ustring;
using oracle::HostNode;
using oracle::TaskStep;

namespace {

constexpr std::size_t kMostSteps = 12;

// An entry is the text of one marker.
std::vector<ustring> chooseAppendix(Choices& choices) {
  std::vector<ustring> entries;
  for (std::size_t count = choices.below(4); count > 0; --count) {
    const ustring line = textOf(choices.until('\n'));
    for (const oracle::TwinMarker& marker : oracle::scanLiterally(line)) {
      entries.push_back(line.substr(marker.position, marker.length));
    }
  }
  return entries;
}

TaskStep chooseStep(Choices& choices) {
  constexpr std::array<std::uint8_t, 6> kKinds = {0, 1, 2, 3, 4, 255};
  TaskStep step;
  // Two of three steps are lines.
  const std::size_t kind = choices.below(18);
  if (kind < 6) step.kind = static_cast<TaskStep::Kind>(kind + 1);
  step.snippet.type.kind = choices.pick(kKinds);
  step.usesLastType = choices.flag();
  step.node = static_cast<HostNode>(choices.below(static_cast<std::size_t>(HostNode::kCount)));
  step.header = choices.below(3);
  step.view = u"view";
  if (step.kind == TaskStep::Kind::kAppendix) step.appendix = chooseAppendix(choices);
  if (step.kind <= TaskStep::Kind::kCanParse) step.snippet.text = textOf(choices.until('\n'));
  return step;
}

}  // namespace

// The input: which services there are, a flag, the text of which the lines are parts unless the
// flag says that it is all lines, and the steps.
void checkTask(std::string_view input) {
  Choices choices(input);
  oracle::TaskCase taskCase;
  taskCase.plan = choosePlan(choices);
  const bool blockIsLines = choices.flag();
  ustring block = blockIsLines ? ustring() : textOf(choices.until('\0'));
  while (!choices.atEnd() && taskCase.steps.size() < kMostSteps) {
    taskCase.steps.push_back(chooseStep(choices));
    if (blockIsLines) block += taskCase.steps.back().snippet.text + u'\n';
  }
  for (TaskStep& step : taskCase.steps) step.snippet.auxiliaryText = block;
  std::vector<oracle::TaskRow> rows;
  require(agree(taskCase, rows), "the task parser does what its twin does",
          [&] { return report(taskCase); });
}

}  // namespace quenlith::fuzz
