#pragma once

#include <string>
#include <vector>

#include "tessera/inputs/Input.hpp"
#include "tessera/run/RunOptions.hpp"

namespace tessera::run {

/// Returns the inputs of a run. The file that it writes to is left out where it was found in a
/// directory. Throws ProblemError when the user named that file as an input, or the inputs cannot
/// be listed.
///
/// Binary files of directories may be in the list; whoever reads one skips it.
std::vector<inputs::Input> listFiles(const RunOptions& options);

/// Leaves out the file `name`, and `name`.partial, where it was found in a directory. Throws
/// ProblemError where the user named it as an input. `option` is the option that `name` was given
/// with, and `use` says what for: "write".
void keepSeparate(std::vector<inputs::Input>& inputs, const std::string& name,
                  const std::string& option, const std::string& use);

}  // namespace tessera::run
