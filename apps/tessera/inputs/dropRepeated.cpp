#include "tessera/inputs/dropRepeated.hpp"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "tessera/files/FileId.hpp"

namespace tessera::inputs {
namespace {

struct FileIdHash {
  std::size_t operator()(const files::FileId& id) const noexcept {
    return std::hash<ino_t>()(id.number) ^ std::hash<dev_t>()(id.device << 1);
  }
};

/// The files of a list so far. Their names are compared only if they are the same file: that costs
/// several system calls, and there may be a million of them.
class KnownFiles {
 public:
  /// Borrows `inputs`.
  explicit KnownFiles(const std::vector<Input>& inputs) : inputs(inputs) {}

  /// Returns whether an earlier input has the path of this one.
  bool contain(std::size_t index) {
    const std::string& path = inputs[index].path;
    const auto id = path == "-" ? std::nullopt : files::idOfFile(path);
    if (!id) return false;
    const auto [known, isNew] = first.emplace(*id, index);
    if (isNew) return false;
    addPath(inputs[known->second].path);
    return !addPath(path);
  }

 private:
  /// Returns whether it was not there.
  bool addPath(const std::string& path) {
    std::error_code error;
    const auto canonical = std::filesystem::canonical(path, error);
    return error || paths.insert(canonical.string()).second;
  }

  const std::vector<Input>& inputs;
  std::unordered_map<files::FileId, std::size_t, FileIdHash> first;
  // Of the files that have several names.
  std::unordered_set<std::string> paths;
};

}  // namespace

void dropRepeated(std::vector<Input>& inputs) {
  KnownFiles known(inputs);
  std::vector<Input> kept;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    if (!known.contain(i)) kept.push_back(inputs[i]);
  }
  inputs = std::move(kept);
}

}  // namespace tessera::inputs
