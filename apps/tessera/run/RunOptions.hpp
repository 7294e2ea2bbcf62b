#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "tessera/inputs/InputOptions.hpp"
#include "tessera/progress/RunProgress.hpp"

namespace tessera::run {

/// Which files a command works on, in how many processes, and where the output goes.
struct RunOptions {
  inputs::InputOptions inputs;
  /// Empty: standard output.
  std::string outputFile;
  /// Whether the run continues what an interrupted one has written to `outputFile`.
  bool resumes = false;
  std::size_t workers = 1;
  /// How long a worker may take for a file. Zero: no limit.
  std::chrono::milliseconds timeout{0};
  progress::Mode progress = progress::Mode::kAuto;
};

}  // namespace tessera::run
