#include "tessera/inputs/dropRepeated.hpp"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_map>
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

  /// Returns the first input with the path of this one, perhaps itself.
  std::size_t firstOf(std::size_t index) {
    const std::string& path = inputs[index].path;
    const auto id = path == "-" ? std::nullopt : files::idOfFile(path);
    if (!id) return index;
    const auto [known, isNew] = indices.emplace(*id, index);
    if (isNew) return index;
    addPath(known->second);
    return addPath(index);
  }

 private:
  std::size_t addPath(std::size_t index) {
    std::error_code error;
    const auto canonical = std::filesystem::canonical(inputs[index].path, error);
    return error ? index : paths.emplace(canonical.string(), index).first->second;
  }

  const std::vector<Input>& inputs;
  std::unordered_map<files::FileId, std::size_t, FileIdHash> indices;
  // Of the files that have several names.
  std::unordered_map<std::string, std::size_t> paths;
};

}  // namespace

void dropRepeated(std::vector<Input>& inputs) {
  KnownFiles known(inputs);
  std::vector<bool> isRepeated(inputs.size());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const std::size_t first = known.firstOf(i);
    isRepeated[i] = first != i;
    if (!inputs[i].isFound) inputs[first].isAlsoNamed = true;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    if (isRepeated[i]) continue;
    if (kept != i) inputs[kept] = std::move(inputs[i]);
    ++kept;
  }
  inputs.resize(kept);
}

}  // namespace tessera::inputs
