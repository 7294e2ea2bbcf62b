#include "tessera/run/listFiles.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/FileId.hpp"
#include "tessera/files/PartialFile.hpp"
#include "tessera/inputs/listInputs.hpp"

namespace tessera::run {

using inputs::Input;

namespace {

std::optional<files::FileId> idOfInput(const std::string& path) {
  return path == "-" ? files::idOfStream(STDIN_FILENO) : files::idOfFile(path);
}

/// The files that exist of the outputs that were named.
class WrittenFiles {
 public:
  void add(const NamedOutput& output) {
    for (const std::string& name : {output.name, files::outputNames(output.name).partial}) {
      if (const auto id = files::idOfFile(name))
        existing.push_back({.id = *id, .name = name, .output = output});
    }
  }

  /// Throws ProblemError when the list of the inputs is an output.
  void requireOther(const std::string& listFile) const {
    const WrittenFile* const file = listFile.empty() ? nullptr : find(listFile);
    if (file != nullptr) refuseOutput(*file, "the list of the inputs");
  }

  /// Leaves out those that were found. Throws ProblemError when an output was named.
  void leaveOut(std::vector<Input>& inputs) const {
    // To look at a file costs a system call, and there may be a million of them.
    if (existing.empty()) return;
    std::erase_if(inputs, [&](const Input& input) {
      const WrittenFile* const file = find(input.path);
      if (file != nullptr && !input.mayBeLeftOut()) refuseOutput(*file, "one of the inputs");
      return file != nullptr;
    });
  }

 private:
  struct WrittenFile {
    files::FileId id;
    std::string name;
    const NamedOutput& output;
  };

  const WrittenFile* find(const std::string& path) const {
    const auto id = idOfInput(path);
    if (!id) return nullptr;
    const auto found = std::ranges::find(existing, *id, &WrittenFile::id);
    return found == existing.end() ? nullptr : &*found;
  }

  [[noreturn]] static void refuseOutput(const WrittenFile& file, const std::string& other) {
    throw diagnostics::ProblemError({.file = file.name,
                                     .place = {},
                                     .what = "the file to " + file.output.use + " is " + other,
                                     .remedy = "name another file after " + file.output.option});
  }

  std::vector<WrittenFile> existing;
};

}  // namespace

std::vector<Input> listFiles(const RunOptions& options, std::vector<NamedOutput> otherOutputs) {
  // Where inputs are counted, what is left out is not an input.
  const bool isCounted = options.resumes || options.inputs.shard.count > 1;
  std::vector<Input> inputs = inputs::listInputs(
      options.inputs, isCounted ? inputs::LeaveOut::kWhenListed : inputs::LeaveOut::kWhenRead);
  std::vector<NamedOutput> outputs = std::move(otherOutputs);
  if (!options.outputFile.empty()) {
    outputs.push_back({.name = options.outputFile, .option = "-o", .use = "write"});
  }
  WrittenFiles written;
  for (const NamedOutput& output : outputs) written.add(output);
  written.requireOther(options.inputs.listFile);
  written.leaveOut(inputs);
  // Not before: whether an output exists would decide which inputs are in which shard.
  inputs::keepShard(inputs, options.inputs.shard);
  return inputs;
}

}  // namespace tessera::run
