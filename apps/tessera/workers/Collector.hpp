#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/workers/Job.hpp"

namespace tessera::workers {

/// Why an input has no result.
struct Loss {
  /// What happened, for example "the process that worked on it was ended by signal 11
  /// (Segmentation fault)".
  std::string reason;
  /// kLate: it took longer than allowed. kKilled: by a signal, as when the system has no memory
  /// left.
  enum class Cause { kLate, kKilled, kOther };
  Cause cause = Cause::kOther;
  /// The line that the worker was at; 0 if it was at none.
  std::uint64_t line = 0;
};

/// Takes the results of a run, in the order of the inputs.
class Collector {
 public:
  virtual ~Collector() = default;

  /// The next piece of the output of the current input.
  virtual void addText(std::string_view piece) = 0;
  /// A message for the user.
  virtual void addMessage(std::string_view message) = 0;
  /// All of the current input has been added.
  virtual void endInput(std::size_t index, Outcome outcome) = 0;
  /// Nothing more has come for a while: what is buffered is to be written.
  virtual void rest() = 0;
  /// The worker was lost with the current input. Takes back the pieces that were added.
  virtual void loseInput(std::size_t index, const Loss& loss) = 0;
};

}  // namespace tessera::workers
