#include "tessera/run/listFiles.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/PartialFile.hpp"
#include "tessera/inputs/listInputs.hpp"

namespace tessera::run {

using inputs::Input;

namespace {

/// What tells a regular file from all others.
struct FileId {
  dev_t device;
  ino_t number;

  bool operator==(const FileId&) const = default;
};

std::optional<FileId> idOf(int result, const struct stat& status) {
  if (result != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return FileId{status.st_dev, status.st_ino};
}

std::optional<FileId> idOfFile(const std::string& name) {
  struct stat status;
  return idOf(::stat(name.c_str(), &status), status);
}

std::optional<FileId> idOfStream(int descriptor) {
  struct stat status;
  return idOf(::fstat(descriptor, &status), status);
}

std::optional<FileId> idOfInput(const std::string& path) {
  return path == "-" ? idOfStream(STDIN_FILENO) : idOfFile(path);
}

/// The files that exist of those that a run writes.
class WrittenFiles {
 public:
  void add(const NamedOutput& output) {
    for (const std::string& name : {output.name, files::outputNames(output.name).partial}) {
      if (const auto id = idOfFile(name))
        files.push_back({.id = *id, .name = name, .output = &output});
    }
  }

  /// Call it after `add`.
  void addStream(int descriptor) {
    if (const auto id = idOfStream(descriptor))
      files.push_back({.id = *id, .name = {}, .output = nullptr});
  }

  /// Throws ProblemError when the list of the inputs is an output.
  void requireOther(const std::string& listFile) const {
    const WrittenFile* const file = listFile.empty() ? nullptr : find(listFile);
    if (file != nullptr) refuseOutput(*file, "the list of the inputs");
  }

  /// Leaves out those that were found. Throws ProblemError when an output was named.
  void leaveOut(std::vector<Input>& inputs) const {
    if (files.empty()) return;
    const bool haveOutputs = files.front().output != nullptr;
    std::erase_if(inputs, [&](const Input& input) {
      // To look at a file costs a system call, and there may be a million of them.
      if (!input.isFound && !haveOutputs) return false;
      const WrittenFile* const file = find(input.path);
      if (file != nullptr && !input.isFound) refuseOutput(*file, "one of the inputs");
      return file != nullptr && input.isFound;
    });
  }

 private:
  struct WrittenFile {
    FileId id;
    std::string name;
    // Null if it is a standard stream.
    const NamedOutput* output;
  };

  const WrittenFile* find(const std::string& path) const {
    const auto id = idOfInput(path);
    if (!id) return nullptr;
    const auto found = std::ranges::find(files, *id, &WrittenFile::id);
    return found == files.end() ? nullptr : &*found;
  }

  /// It is not wrong to name a standard stream.
  static void refuseOutput(const WrittenFile& file, const std::string& other) {
    if (file.output == nullptr) return;
    throw diagnostics::ProblemError({.file = file.name,
                                     .place = {},
                                     .what = "the file to " + file.output->use + " is " + other,
                                     .remedy = "name another file after " + file.output->option});
  }

  // The outputs before the standard streams.
  std::vector<WrittenFile> files;
};

}  // namespace

std::vector<Input> listFiles(const RunOptions& options, std::vector<NamedOutput> otherOutputs) {
  // Where inputs are counted, binary files are not inputs.
  const bool isCounted = options.resumes || options.inputs.shard.count > 1;
  std::vector<Input> inputs = inputs::listInputs(
      options.inputs, isCounted ? inputs::BinaryFiles::kLeftOut : inputs::BinaryFiles::kListed);
  std::vector<NamedOutput> outputs = std::move(otherOutputs);
  if (!options.outputFile.empty()) {
    outputs.push_back({.name = options.outputFile, .option = "-o", .use = "write"});
  }
  WrittenFiles written;
  for (const NamedOutput& output : outputs) written.add(output);
  written.requireOther(options.inputs.listFile);
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) written.addStream(stream);
  written.leaveOut(inputs);
  // Not before: whether an output exists would decide which inputs are in which shard.
  inputs::keepShard(inputs, options.inputs.shard);
  return inputs;
}

}  // namespace tessera::run
