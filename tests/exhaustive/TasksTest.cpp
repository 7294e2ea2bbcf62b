#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "exhaustive/Run.hpp"
#include "exhaustive/TaskComparison.hpp"
#include "oracle/task/TaskCase.hpp"

// The task parser and its twin agree on every sequence of up to seven calls: opening A, closing A,
// B, a plain line, both markers of A on a line, a repeated marker; kinds; reset.

namespace quenlith::exhaustive {
namespace {

void compareCalls(const std::string& name, const TaskCalls& alphabet, std::size_t length,
                  bool logging) {
  const auto part = [&](std::size_t first, std::size_t second) {
    TaskComparison comparison(alphabet, length, logging);
    comparison.compareFrom(first, second);
    return comparison.getOutcome();
  };
  // All threads have one log.
  const Threads threads = logging ? Threads::kOne : Threads::kAll;
  const Outcome outcome = forEachPair(alphabet.size(), threads, part);
  report(name + " of " + std::to_string(length) + " calls", outcome, "closed tasks");
}

// 25 calls, of which 25^7 sequences would take days. Sequences of up to 5 calls show that two kinds
// are enough: `parse` only compares the kind with 1, and `canParse` with 3.
TEST(ExhaustiveTasks, CallsOfAllKindsAgreeWithTheTwin) {
  compareCalls("all kinds", callsOfAllKinds(), std::min<std::size_t>(unitsOfThisRun() - 1, 5),
               false);
}

// 12 calls: each line with the kinds 0 and 3. The kind of a line without a task marker is not read.
TEST(ExhaustiveTasks, CallsOfTwoKindsAgreeWithTheTwin) {
  compareCalls("two kinds", callsOfTwoKinds(), unitsOfThisRun(), false);
}

// The parser caches the counts of the last block.
TEST(ExhaustiveTasks, CallsInSeveralBlocksAgreeWithTheTwin) {
  compareCalls("several blocks", callsInSeveralBlocks(), unitsOfThisRun() - 1, false);
}

TEST(ExhaustiveTasks, CallsWriteTheSameLogAsTheTwin) {
  compareCalls("log", callsOfTwoKinds(), std::min<std::size_t>(unitsOfThisRun() - 1, 4), true);
}

// As a host should: the block consists of the lines of the sequence, and each kind is that of
// the result before.
class HostSequences {
 public:
  explicit HostSequences(std::size_t first, std::size_t second) {
    calls = {&alphabet[first], &alphabet[second]};
  }

  void extend(std::size_t more) {
    if (more == 0) return compare();
    for (const TaskCall& call : alphabet) {
      calls.push_back(&call);
      extend(more - 1);
      calls.pop_back();
    }
  }

  const Outcome& getOutcome() const { return outcome; }

 private:
  void compare() {
    oracle::TaskCase taskCase;
    taskCase.plan.builtInDefaultParser = true;
    for (const TaskCall* call : calls) taskCase.steps.push_back(stepOf(*call));
    std::vector<oracle::TaskRow> rows;
    ++outcome.cases;
    const bool agrees = oracle::agree(taskCase, rows);
    outcome.occurrences += static_cast<std::uint64_t>(
        std::count(rows.begin(), rows.end(), oracle::TaskRow::kCloseOfHeader));
    if (agrees || !outcome.difference.empty()) return;
    outcome.difference = oracle::report(oracle::shrink(taskCase));
  }

  oracle::TaskStep stepOf(const TaskCall& call) const {
    oracle::TaskStep step;
    if (call.isReset) step.kind = oracle::TaskStep::Kind::kReset;
    step.snippet = call.snippet;
    step.usesLastType = true;
    for (const TaskCall* line : calls) step.snippet.auxiliaryText += line->snippet.text + u"\n";
    return step;
  }

  const TaskCalls alphabet = callsOfAHost();
  std::vector<const TaskCall*> calls;
  Outcome outcome;
};

TEST(ExhaustiveTasks, CallsOfAHostAgreeWithTheTwin) {
  const std::size_t length = unitsOfThisRun();
  const auto part = [&](std::size_t first, std::size_t second) {
    HostSequences sequences(first, second);
    sequences.extend(length - kSpread);
    return sequences.getOutcome();
  };
  const Outcome outcome = forEachPair(callsOfAHost().size(), Threads::kOne, part);
  report("as a host, of " + std::to_string(length) + " calls", outcome, "closed tasks");
}

}  // namespace
}  // namespace quenlith::exhaustive
