#include <gtest/gtest.h>

#include <iostream>

#include "oracle/support/RunSettings.hpp"
#include "oracle/support/Tally.hpp"
#include "oracle/task/TaskCase.hpp"

namespace quenlith::oracle {
namespace {

constexpr std::size_t kCases = 200'000;
// Each one is run for every call of a service. A whole run lets it fail in all ways.
constexpr std::size_t kFaultCases = 50;

bool runCase(const TaskCase& taskCase, const std::string& hint, Tally& tally) {
  std::vector<TaskRow> rows;
  if (agree(taskCase, rows)) {
    for (const TaskRow row : rows) tally.count(static_cast<std::size_t>(row));
    return true;
  }
  ADD_FAILURE() << hint << '\n' << report(shrink(taskCase));
  return false;
}

bool runRandomCase(const RunSettings& settings, std::size_t number, Tally& tally) {
  Random random(settings.seedOf(number));
  return runCase(randomTaskCase(random), settings.repeatHint(number), tally);
}

bool runLongCases(const RunSettings& settings, Tally& tally) {
  for (std::size_t end = 0; end < static_cast<std::size_t>(LongEnd::kCount); ++end) {
    TaskCase taskCase;
    taskCase.steps = longTaskSteps(static_cast<LongEnd>(end));
    for (const bool logging : {false, true}) {
      if (logging && !settings.isWhole()) continue;
      taskCase.plan.logging = logging;
      if (!runCase(taskCase, "a task of 65,536 lines", tally)) return false;
    }
  }
  return true;
}

TEST(TaskOracle, RandomCallsAgreeWithTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kCases);
  Tally tally;
  addTaskRows(settings, tally);
  const auto run = [&](std::size_t number) { return runRandomCase(settings, number, tally); };
  if (!settings.runCases(run)) return;
  if (!runLongCases(settings, tally)) return;
  std::cout << tally;
  for (const std::string& row : tally.shortRows()) ADD_FAILURE() << "too seldom: " << row;
}

/// Lets every call of a service in one case throw.
bool runFaults(const RunSettings& settings, std::size_t number) {
  Random random(settings.seedOf(number));
  TaskCase taskCase = randomFaultCase(random);
  const auto player = makeTwinPlayer(taskCase.plan);
  play(*player, taskCase.steps);
  const std::size_t calls = player->getWorld().callCount();
  Tally tally;
  addTaskRows(settings, tally);
  const bool isWhole = settings.cases >= settings.wholeCases;
  for (std::size_t call = 0; call < calls; ++call) {
    for (std::size_t way = 0; way < kWaysToFail; ++way) {
      if (!isWhole && way != (number + call) % kWaysToFail) continue;
      planFailure(taskCase.plan, call, way);
      if (!runCase(taskCase, settings.repeatHint(number), tally)) return false;
    }
  }
  return true;
}

TEST(TaskOracle, CallsInWhichAServiceThrowsAgreeWithTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kFaultCases);
  settings.runCases([&](std::size_t number) { return runFaults(settings, number); });
}

}  // namespace
}  // namespace quenlith::oracle
