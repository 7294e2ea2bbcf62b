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

/// Returns a case in which the host parses the lines of a snippet, resets the parser and parses
/// them again into a new document. It repeats a call that throws.
TaskCase randomFaultCase(Random& random);

/// Returns whether the twin and the real parser agree. Appends the cells of the decision matrix
/// that the twin went through to `rows`.
bool agree(const TaskCase& taskCase, std::vector<TaskRow>& rows);

/// Returns a smaller case on which the two still differ.
TaskCase shrink(TaskCase taskCase);

/// Returns the steps, and where the two outcomes differ, as text for a person.
std::string report(const TaskCase& taskCase);

}  // namespace quenlith::oracle
