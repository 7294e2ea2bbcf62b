#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/files/PartialFile.hpp"
#include "tessera/inputs/Input.hpp"

namespace tessera::run {

/// The records that a format writes, one per line and input. The content of one is what comes from
/// the end of its head to its line feed.
struct RecordRules {
  /// Returns how the record of a file begins, up to a member that all records have.
  std::function<std::string(const std::string& path)> head;
  /// How a record goes on after its head: with one of these. Those of other commands do not.
  std::vector<std::string_view> contents;
  /// Whether an input without a record of its content has a record that says why.
  bool hasErrorRecords = true;
  /// Returns whether a record of an interrupted run depends on other files: it and the records
  /// after it are written again. Empty if none does.
  std::function<bool(std::string_view content)> dependsOnOthers;
  /// Is shown each record that is kept, in order; may be empty.
  std::function<void(std::string_view content)> note;
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

/// Shows the records of `inputs` in the complete file `name` to `rules.note`, up to the first
/// record that is not one of theirs. Throws OutputError when the file cannot be read.
void noteRecords(const std::string& name, const std::vector<inputs::Input>& inputs,
                 const RecordRules& rules);

}  // namespace tessera::run
