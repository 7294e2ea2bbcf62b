#include "tessera/inputs/readFileList.hpp"

#include <cstddef>
#include <string_view>

#include "tessera/files/FileReader.hpp"

namespace tessera::inputs {
namespace {

std::string readAll(const std::string& name) {
  files::FileReader reader(name);
  std::string bytes;
  // Not on the stack, which may be small.
  std::vector<char> piece(64 * 1024);
  while (const std::size_t count = reader.read(piece.data(), piece.size())) {
    bytes.append(piece.data(), count);
  }
  return bytes;
}

}  // namespace

std::vector<std::string> readFileList(const std::string& name, bool isNulSeparated) {
  const std::string bytes = readAll(name);
  const char separator = isNulSeparated ? '\0' : '\n';
  std::vector<std::string> paths;
  std::string_view rest = bytes;
  while (!rest.empty()) {
    const std::string_view path = rest.substr(0, rest.find(separator));
    if (!path.empty()) paths.emplace_back(path);
    rest.remove_prefix(path.size() == rest.size() ? path.size() : path.size() + 1);
  }
  return paths;
}

}  // namespace tessera::inputs
