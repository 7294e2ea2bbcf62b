#include "tessera/inputs/listInputs.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/inputs/DirectoryWalk.hpp"
#include "tessera/inputs/GlobFilter.hpp"
#include "tessera/inputs/dropRepeated.hpp"
#include "tessera/inputs/openInput.hpp"
#include "tessera/inputs/readFileList.hpp"

namespace tessera::inputs {
namespace {

bool isDirectory(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::vector<std::string> readPaths(const InputOptions& options) {
  std::vector<std::string> paths = options.paths;
  if (options.listFile.empty()) return paths;
  for (std::string& path : readFileList(options.listFile, options.isNulSeparated)) {
    paths.push_back(std::move(path));
  }
  return paths;
}

void requireOneStandardInput(const InputOptions& options, const std::vector<std::string>& paths) {
  const auto count = std::ranges::count(paths, "-") + (options.listFile == "-" ? 1 : 0);
  if (count <= 1) return;
  throw diagnostics::ProblemError(
      {.file = "-",
       .place = {},
       .what = "standard input is named " + std::to_string(count) + " times, and can be read once",
       .remedy = "name it once"});
}

}  // namespace

std::vector<Input> listInputs(const InputOptions& options, LeaveOut leaveOut) {
  const std::vector<std::string> paths = readPaths(options);
  requireOneStandardInput(options, paths);
  const GlobFilter globs(options.globs);
  const DirectoryWalk walk(globs, options.respectsIgnoreFiles);
  std::vector<Input> inputs;
  for (const std::string& path : paths) {
    if (path != "-" && isDirectory(path)) {
      walk.list(path, inputs);
    } else {
      inputs.push_back({.path = path});
    }
  }
  if (options.dropsRepeated && paths.size() > 1) dropRepeated(inputs);
  if (leaveOut == LeaveOut::kWhenListed) {
    const files::StreamFiles streams;
    std::erase_if(inputs, [&](const Input& input) { return isLeftOut(input, streams); });
  }
  return inputs;
}

bool isLeftOut(files::FileReader& file, const files::StreamFiles& streams) {
  return streams.contain(file.id()) || file.looksBinary();
}

bool isLeftOut(const Input& input, const files::StreamFiles& streams) {
  if (!input.mayBeLeftOut()) return false;
  try {
    files::FileReader file = openInput(input);
    return isLeftOut(file, streams);
  } catch (const diagnostics::ProblemError&) {
    return false;
  }
}

void keepShard(std::vector<Input>& inputs, const Shard& shard) {
  if (shard.count == 1) return;
  std::size_t kept = 0;
  for (std::size_t i = shard.index - 1; i < inputs.size();) {
    if (kept != i) inputs[kept] = std::move(inputs[i]);
    ++kept;
    // The next number may be past the largest one that there is.
    if (inputs.size() - i <= shard.count) break;
    i += shard.count;
  }
  inputs.resize(kept);
}

}  // namespace tessera::inputs
