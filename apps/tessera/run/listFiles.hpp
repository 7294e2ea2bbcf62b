#pragma once

#include <string>
#include <vector>

#include "tessera/inputs/Input.hpp"
#include "tessera/run/RunOptions.hpp"

namespace tessera::run {

/// A file that a run writes, as the user named it.
struct NamedOutput {
  std::string name;
  /// The option that the name was given with.
  std::string option;
  /// What for: "write".
  std::string use;
};

/// Returns the inputs of a run. The files that it writes are left out where they were found in a
/// directory: its output, `otherOutputs`, and what they are called until they are complete. Throws
/// ProblemError when the user named one of the outputs as an input or as the list of the inputs, or
/// the inputs cannot be listed.
///
/// Binary files of directories may be in the list, and files that are standard streams; whoever
/// reads one skips it (`inputs::isLeftOut`).
std::vector<inputs::Input> listFiles(const RunOptions& options,
                                     std::vector<NamedOutput> otherOutputs = {});

}  // namespace tessera::run
