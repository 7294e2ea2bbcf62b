#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tessera/files/PartialFile.hpp"
#include "tessera/inputs/Input.hpp"

namespace tessera::commands {

/// What an interrupted run has written.
struct ResumedRecords {
  /// The number of complete records: those of the first inputs.
  std::size_t count = 0;
  /// Whether one of them says that its file could not be parsed.
  bool hasErrors = false;
};

/// Cuts `file` after its last complete record. Throws ProblemError, and changes nothing, when its
/// records are not those of the first of `inputs`.
ResumedRecords resumeRecords(files::PartialFile& file, const std::vector<inputs::Input>& inputs);

}  // namespace tessera::commands
