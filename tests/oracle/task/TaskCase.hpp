#pragma once

#include <string>
#include <vector>

#include "oracle/task/TaskPlay.hpp"

namespace quenlith::oracle {

/// One sequence of calls on one task parser.
struct TaskCase {
  WorldPlan plan;
  TaskSteps steps;
};

TaskCase randomTaskCase(Random& random);

/// Tells whether twin and real parser come out alike. The cells of the decision matrix that
/// the twin went through are appended to `rows`.
bool agree(const TaskCase& taskCase, std::vector<TaskRow>& rows);

/// Returns a smaller case on which both still differ.
TaskCase shrink(TaskCase taskCase);

/// Returns the steps, and where the two outcomes part, in readable form.
std::string report(const TaskCase& taskCase);

}  // namespace quenlith::oracle
