#include "tessera/run/listFiles.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/inputs/listInputs.hpp"

namespace tessera::run {

using inputs::Input;

namespace {

/// Tells whether a path is the file `name`.
class SameFile {
 public:
  explicit SameFile(const std::string& name) : name(name) {
    exists = ::stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
  }

  bool operator()(const std::string& path) const {
    if (!exists) return false;
    if (path == "-") return files::isRedirectedTo(STDIN_FILENO, name);
    struct stat other;
    return ::stat(path.c_str(), &other) == 0 && other.st_dev == status.st_dev &&
           other.st_ino == status.st_ino;
  }

 private:
  std::string name;
  struct stat status = {};
  bool exists = false;
};

}  // namespace

void keepSeparate(std::vector<Input>& inputs, const std::string& name, const std::string& option,
                  const std::string& use) {
  for (const std::string& written : {name, name + ".partial"}) {
    const SameFile isWritten(written);
    for (const Input& input : inputs) {
      if (input.isFound || !isWritten(input.path)) continue;
      throw diagnostics::ProblemError({.file = written,
                                       .place = {},
                                       .what = "the file to " + use + " is one of the inputs",
                                       .remedy = "name another file after " + option});
    }
    std::erase_if(inputs, [&](const Input& input) { return isWritten(input.path); });
  }
}

std::vector<Input> listFiles(const RunOptions& options) {
  // Where inputs are counted, binary files are not inputs.
  const bool isCounted = options.resumes || options.inputs.shard.count > 1;
  std::vector<Input> inputs = inputs::listInputs(
      options.inputs, isCounted ? inputs::BinaryFiles::kLeftOut : inputs::BinaryFiles::kListed);
  if (!options.outputFile.empty()) keepSeparate(inputs, options.outputFile, "-o", "write");
  return inputs;
}

}  // namespace tessera::run
