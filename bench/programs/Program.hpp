#pragma once

#include <string>
#include <vector>

namespace bench::programs {

/// The cost and the output of a run of a program.
struct Finished {
  /// Processor time, in the program and in the kernel on its behalf.
  double processorSeconds = 0;
  std::string output;
};

/// Runs the program `arguments[0]`, a path, and waits for its end. Throws std::runtime_error when
/// it cannot be started or does not end with status 0.
Finished run(const std::vector<std::string>& arguments);

/// Like `run`, but what the program writes goes to the file `outputFile`.
Finished runToFile(const std::vector<std::string>& arguments, const std::string& outputFile);

}  // namespace bench::programs
