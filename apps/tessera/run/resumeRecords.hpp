#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/files/PartialFile.hpp"
#include "tessera/inputs/Input.hpp"

namespace tessera::run {

/// What a resumed run may do with a complete record of the interrupted one.
enum class Keep {
  kRecord,
  /// It depends on other files: it and the records after it are written again.
  kNothingFromHere,
};

/// The records that a format writes, one per line and input.
struct RecordRules {
  /// Returns how the record of a file begins, up to a member that all records have.
  std::function<std::string(const std::string& path)> head;
  /// Whether an input without a record of its content has a record that says why.
  bool hasErrorRecords = true;
  /// Is shown each record of the interrupted run, in order, from the end of its head to its line
  /// feed.
  std::function<Keep(std::string_view content)> examine;
};

/// The inputs of a resumed run.
struct ResumedInputs {
  /// In the interrupted run these could not be used: their records are missing between others. They
  /// are tried again, so that their messages and the exit status are those of a whole run.
  std::vector<inputs::Input> failed;
  /// Those after the last record.
  std::vector<inputs::Input> rest;
};

/// Cuts `file` after its last complete record that can be kept, and returns the inputs that are
/// still to be worked on. Throws ProblemError, and changes nothing, when its records are not those
/// of the first of `inputs`.
ResumedInputs resumeRecords(files::PartialFile& file, std::vector<inputs::Input> inputs,
                            const RecordRules& rules);

}  // namespace tessera::run
