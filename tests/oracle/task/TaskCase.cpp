#include "oracle/task/TaskCase.hpp"

#include <algorithm>
#include <utility>

#include "oracle/support/randomPlan.hpp"
#include "oracle/support/show.hpp"

namespace quenlith::oracle {

namespace {

constexpr std::size_t kMostStepsShown = 40;

bool differs(const TaskCase& taskCase) {
  std::vector<TaskRow> rows;
  return !agree(taskCase, rows);
}

bool dropSteps(TaskCase& taskCase, std::size_t length) {
  for (std::size_t i = 0; i + length <= taskCase.steps.size(); ++i) {
    TaskCase candidate = taskCase;
    const auto first = candidate.steps.begin() + static_cast<std::ptrdiff_t>(i);
    candidate.steps.erase(first, first + static_cast<std::ptrdiff_t>(length));
    if (!differs(candidate)) continue;
    taskCase = std::move(candidate);
    return true;
  }
  return false;
}

bool shortenText(TaskCase& taskCase, std::size_t step, ustring Snippet::*text) {
  const std::size_t size = (taskCase.steps[step].snippet.*text).size();
  for (std::size_t length = size; length > 0; length /= 2) {
    for (std::size_t i = 0; i + length <= size; ++i) {
      TaskCase candidate = taskCase;
      (candidate.steps[step].snippet.*text).erase(i, length);
      if (!differs(candidate)) continue;
      taskCase = std::move(candidate);
      return true;
    }
  }
  return false;
}

std::vector<std::string> listings(const std::vector<DocumentRecord>& documents) {
  std::vector<std::string> lines;
  for (const DocumentRecord& document : documents) {
    lines.emplace_back("document");
    const auto nodes = listing(document);
    lines.insert(lines.end(), nodes.begin(), nodes.end());
  }
  return lines;
}

}  // namespace

TaskCase randomTaskCase(Random& random) {
  TaskCase taskCase;
  taskCase.plan = randomPlainPlan(random);
  if (random.oneIn(12)) {
    // A service that throws while a task is opened leaves the task's id in the parser.
    taskCase.plan.throwOneIn = 3;
    taskCase.steps = oneTaskSteps(random);
  } else {
    taskCase.steps = randomTaskSteps(random);
  }
  const TaskSteps probes = probeSteps(random);
  taskCase.steps.insert(taskCase.steps.end(), probes.begin(), probes.end());
  return taskCase;
}

TaskCase randomFaultCase(Random& random) {
  TaskCase taskCase;
  taskCase.plan = randomPlan(random);
  taskCase.plan.logging = true;
  taskCase.steps = retriedLineSteps(random);
  const TaskSteps again = taskCase.steps;
  for (const auto kind : {TaskStep::Kind::kReset, TaskStep::Kind::kNewDocument}) {
    taskCase.steps.emplace_back().kind = kind;
  }
  taskCase.steps.insert(taskCase.steps.end(), again.begin(), again.end());
  return taskCase;
}

bool agree(const TaskCase& taskCase, std::vector<TaskRow>& rows) {
  const auto twin = makeTwinPlayer(taskCase.plan);
  const auto real = makeRealPlayer(taskCase.plan);
  play(*real, taskCase.steps);
  play(*twin, taskCase.steps);
  const auto met = twin->rows();
  rows.insert(rows.end(), met.begin(), met.end());
  return twin->getWorld().getTrace() == real->getWorld().getTrace() &&
         twin->documents() == real->documents();
}

TaskCase shrink(TaskCase taskCase) {
  for (std::size_t length = std::min<std::size_t>(taskCase.steps.size(), 64); length > 0;) {
    if (!dropSteps(taskCase, length)) length /= 2;
  }
  for (std::size_t step = 0; step < taskCase.steps.size(); ++step) {
    while (shortenText(taskCase, step, &Snippet::text)) continue;
    while (shortenText(taskCase, step, &Snippet::auxiliaryText)) continue;
  }
  return taskCase;
}

std::string report(const TaskCase& taskCase) {
  std::string out;
  const std::size_t shown = std::min(taskCase.steps.size(), kMostStepsShown);
  for (std::size_t i = 0; i < shown; ++i) out += showStep(taskCase.steps[i]) + '\n';
  const auto twin = makeTwinPlayer(taskCase.plan);
  const auto real = makeRealPlayer(taskCase.plan);
  play(*twin, taskCase.steps);
  play(*real, taskCase.steps);
  out += showDifference(twin->getWorld().getTrace(), real->getWorld().getTrace());
  return out + showDifference(listings(twin->documents()), listings(real->documents()));
}

}  // namespace quenlith::oracle
