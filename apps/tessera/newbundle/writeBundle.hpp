#pragma once

#include <string>
#include <vector>

namespace tessera::newbundle {

/// Writes the template of a bundle named `name`, which has no fault, into the folder `directory`,
/// and returns the paths of the files. The folder must be empty or not exist; its parent must
/// exist. No existing file is changed. Throws ProblemError.
std::vector<std::string> writeBundle(const std::string& name, const std::string& directory);

}  // namespace tessera::newbundle
