#include "oracle/task/TaskStep.hpp"

#include <array>
#include <utility>

#include "oracle/support/show.hpp"
#include "oracle/task/taskLines.hpp"

namespace quenlith::oracle {

namespace {

constexpr std::array<std::u16string_view, 3> kViews = {u"host", u"", u"\u6f22"};
constexpr std::size_t kLinesOfLongTask = 65'536;

std::uint8_t randomByte(Random& random) {
  return static_cast<std::uint8_t>(random.below(256));
}

TaskStep parseStep(const ustring& text, std::uint8_t kind, const ustring& block) {
  TaskStep step;
  step.snippet.text = text;
  step.snippet.type = {0, kind};
  step.snippet.auxiliaryText = block;
  return step;
}

TaskStep hostStep(TaskStep::Kind kind) {
  TaskStep step;
  step.kind = kind;
  return step;
}

TaskStep appendixStep(Random& random) {
  TaskStep step = hostStep(TaskStep::Kind::kAppendix);
  step.appendix = randomAppendix(random);
  return step;
}

TaskStep changeHeaderStep(Random& random) {
  TaskStep step = hostStep(TaskStep::Kind::kChangeHeader);
  step.header = random.below(4);
  step.view = random.pick(kViews);
  return step;
}

TaskStep addNodeStep(Random& random) {
  TaskStep step = hostStep(TaskStep::Kind::kAddNode);
  step.node = static_cast<HostNode>(random.below(static_cast<std::size_t>(HostNode::kCount)));
  return step;
}

TaskStep randomHostStep(Random& random) {
  const std::size_t choice = random.below(10);
  if (choice < 3) return addNodeStep(random);
  if (choice < 6) return changeHeaderStep(random);
  if (choice < 7) return appendixStep(random);
  if (choice < 8) return hostStep(TaskStep::Kind::kNewDocument);
  return hostStep(TaskStep::Kind::kReset);
}

// Changes one code unit in place: the block keeps its length and its address.
void changeBlock(ustring& block, Random& random) {
  const std::size_t place = block.rfind(u'"', block.size() - random.below(block.size()));
  if (place == ustring::npos || place == 0) return;
  block[place - 1] = random.oneIn(2) ? u'a' : u'b';
}

// Any call may follow any other.
TaskSteps anySteps(Random& random) {
  constexpr std::array<std::uint8_t, 8> kKinds = {0, 0, 0, 1, 2, 3, 3, 255};
  TaskSteps steps;
  ustring block = randomBlock(random);
  const std::size_t calls = random.between(1, 8);
  for (std::size_t i = 0; i < calls; ++i) {
    if (random.oneIn(6)) changeBlock(block, random);
    if (random.oneIn(12)) block = randomBlock(random);
    TaskStep step = parseStep(randomTaskLine(random), random.pick(kKinds), block);
    if (random.oneIn(6)) step.snippet.type = {randomByte(random), randomByte(random)};
    if (random.oneIn(10)) step.kind = TaskStep::Kind::kCanParse;
    step.usesLastType = random.oneIn(3);
    if (random.oneIn(4)) steps.push_back(randomHostStep(random));
    steps.push_back(step);
  }
  return steps;
}

// The lines of a snippet in order, each with the type of the previous result.
TaskSteps linesInOrder(Random& random) {
  std::vector<ustring> lines(random.between(2, 6));
  ustring block;
  for (ustring& line : lines) {
    line = randomTaskLine(random);
    block += line + u"\n";
  }
  TaskSteps steps;
  for (const ustring& line : lines) {
    TaskStep step = parseStep(line, 0, block);
    step.usesLastType = true;
    if (random.oneIn(8)) steps.push_back(randomHostStep(random));
    steps.push_back(step);
  }
  return steps;
}

TaskStep lastOfLongTask(LongEnd end, const ustring& block) {
  switch (end) {
    case LongEnd::kOtherTask:
      return parseStep(u"# <@task#other>", 3, block);
    case LongEnd::kClosingKindAbove1:
      return parseStep(u"# <@task#long>", 3, block);
    case LongEnd::kClosingKind0:
      return parseStep(u"# <@task#long>", 0, block);
    default:
      return parseStep(u"plain", 3, block);
  }
}

}  // namespace

TaskSteps randomTaskSteps(Random& random) {
  TaskSteps steps = random.oneIn(3) ? linesInOrder(random) : anySteps(random);
  if (!random.oneIn(4)) steps.insert(steps.begin(), appendixStep(random));
  // The index of a parser that has not opened a task is 0: any node may have that index.
  if (random.oneIn(4)) steps.insert(steps.begin(), addNodeStep(random));
  return steps;
}

TaskSteps retriedLineSteps(Random& random) {
  TaskSteps steps{appendixStep(random)};
  for (TaskStep step : linesInOrder(random)) {
    if (step.kind == TaskStep::Kind::kParse) {
      steps.push_back(step);
      steps.back().kind = TaskStep::Kind::kCanParse;
      step.isRetried = true;
    }
    steps.push_back(std::move(step));
  }
  return steps;
}

TaskSteps oneTaskSteps(Random& random) {
  const ustring block = u"# <@task#a>\n# <@task#a>\n";
  constexpr std::array<std::u16string_view, 4> kLines = {
      u"x # <@task#a>", u"x # <@task#a> # <@task#a>", u"# <@task#a> # <@task#a>",
      u"# <@task#a> # <@task#b>"};
  TaskSteps steps;
  const std::size_t calls = random.between(2, 5);
  for (std::size_t i = 0; i < calls; ++i) {
    const std::uint8_t kind = random.oneIn(2) ? 0 : 3;
    steps.push_back(parseStep(ustring(random.pick(kLines)), kind, block));
  }
  return steps;
}

TaskSteps probeSteps(Random& random) {
  constexpr std::array<std::u16string_view, 5> kIds = {u"", u"a", u"b", u"c", u"\u00e9"};
  const ustring marker = ustring(u"x # <@task#\"").append(random.pick(kIds)).append(u"\">");
  const std::array<TaskStep, 3> probes = {
      // Closes with the count so far, at the index of the last task.
      parseStep(u"x # <@task#probe>", 0, u"# <@task#probe> # <@task#probe>"),
      // Closes when the id is that of the task.
      parseStep(marker, 3, {}),
      // Has a partner unless the id overlapped before.
      parseStep(marker, 0, marker + marker)};
  const std::size_t first = random.below(probes.size());
  return {probes[first], probes[(first + 1) % 3], probes[(first + 2) % 3]};
}

TaskSteps longTaskSteps(LongEnd end) {
  const ustring block = u"# <@task#long>\n# <@task#long>\n";
  TaskSteps steps = {parseStep(u"# <@task#long>", 0, block)};
  steps.insert(steps.end(), kLinesOfLongTask - 2, parseStep(u"line", 3, {}));
  steps.push_back(lastOfLongTask(end, block));
  steps.push_back(parseStep(u"after", 3, block));
  steps.push_back(parseStep(u"# <@task#long>", 3, block));
  steps.push_back(parseStep(u"# <@task#other>", 0, u"# <@task#other> # <@task#other>"));
  steps.push_back(parseStep(u"x # <@task#long> # <@task#long>", 0, block));
  return steps;
}

std::string showStep(const TaskStep& step) {
  const auto& type = step.snippet.type;
  const std::string call =
      (step.usesLastType
           ? "last type"
           : "{" + std::to_string(type.group) + ',' + std::to_string(type.kind) + '}') +
      std::string(" ") + show(step.snippet.text) + " in " + show(step.snippet.auxiliaryText);
  switch (step.kind) {
    case TaskStep::Kind::kParse:
      return "parse " + call;
    case TaskStep::Kind::kCanParse:
      return "canParse " + call;
    case TaskStep::Kind::kReset:
      return "reset";
    case TaskStep::Kind::kAddNode:
      return "add host node " + std::to_string(static_cast<int>(step.node));
    case TaskStep::Kind::kChangeHeader:
      return "set view of header " + std::to_string(step.header) + " to " + show(step.view);
    case TaskStep::Kind::kNewDocument:
      return "new document";
    case TaskStep::Kind::kAppendix:
      break;
  }
  std::string out = "appendix";
  for (const ustring& entry : step.appendix) out += ' ' + show(entry);
  return out;
}

}  // namespace quenlith::oracle
