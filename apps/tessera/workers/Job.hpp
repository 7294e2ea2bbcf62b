#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "tessera/files/OutputText.hpp"
#include "tessera/progress/InputProgress.hpp"

namespace tessera::workers {

/// What became of an input.
enum class Outcome : std::uint8_t {
  kDone,
  /// It could not be used, and a problem says why.
  kFailed,
  /// It is none, for example a binary file in a directory.
  kSkipped,
};

/// Takes the messages of a job. They appear on standard error in the order of the inputs.
class Messages {
 public:
  virtual ~Messages() = default;
  virtual void report(std::string_view message) = 0;
};

/// The work on the inputs of a run, one after the other.
class Job {
 public:
  virtual ~Job() = default;

  /// Works on the input numbered `index`. Throws what ends the run.
  virtual Outcome run(std::size_t index) = 0;

  /// Returns whether another worker can work on that input again. A pipe can be read only once.
  virtual bool isRepeatable(std::size_t /*index*/) const { return true; }
};

/// What a job uses; it outlives the job.
struct JobContext {
  /// The text of the inputs.
  files::OutputText& output;
  Messages& messages;
  /// To be set to how far the job is: its line is named when the process ends there.
  progress::InputProgress& progress;
};

using MakeJob = std::function<std::unique_ptr<Job>(const JobContext& context)>;

}  // namespace tessera::workers
