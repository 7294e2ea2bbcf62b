#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "exhaustive/Run.hpp"
#include "exhaustive/TaskAlphabets.hpp"
#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/WorldAppendix.hpp"
#include "oracle/task/TaskTwin.hpp"

namespace quenlith::exhaustive {

/// Compares the task parser with its twin on sequences of calls: the document, and in order
/// the results, the calls of the services and, with logging, the records of the log.
///
/// The twin is copied at each call, so that it makes the calls that several sequences begin with
/// only once; a task parser and a document are made for each sequence.
///
/// Leaves out sequences with a reset at their start, at their end or after another one, which are
/// shorter sequences with a call that changes nothing.
class TaskComparison {
 public:
  /// Sequences have `length` calls. A shorter one is compared as the beginning of a longer one.
  TaskComparison(const TaskCalls& alphabet, std::size_t length, bool logging);

  /// Compares all sequences that begin with the calls of these numbers in the alphabet.
  void compareFrom(std::size_t first, std::size_t second);

  const Outcome& getOutcome() const { return outcome; }

 private:
  struct State {
    oracle::TaskTwin twin;
    oracle::DocumentRecord document;
  };

  void extend(const TaskCall& call);
  void callTwin(const TaskCall& call);
  void compareSequence();
  std::string runReal();
  std::string describe(const std::string& difference) const;

  const TaskCalls& alphabet;
  std::size_t length;
  oracle::World twinWorld;
  oracle::World realWorld;
  std::optional<oracle::LogRecorder> recorder;
  std::shared_ptr<oracle::WorldProvider> provider;
  std::shared_ptr<oracle::WorldAppendix> appendix;
  /// The calls of the sequence, what the twin's trace contained after each, and its states before
  /// the first and after each.
  std::vector<const TaskCall*> calls;
  std::vector<std::vector<std::string>> traces;
  std::vector<State> states;
  Outcome outcome;
};

}  // namespace quenlith::exhaustive
