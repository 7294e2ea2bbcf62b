#include "tessera/inputs/readFileList.hpp"

#include <string_view>

#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {

std::vector<std::string> readFileList(const std::string& name, bool isNulSeparated) {
  const std::string bytes = files::readWhole(name);
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
