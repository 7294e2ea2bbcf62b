#include "tessera/inputs/readFileList.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {
namespace {

/// A path would end at its NUL, and perhaps be that of another file.
void requireNoNul(const std::string& name, std::string_view bytes) {
  const std::size_t nul = bytes.find('\0');
  if (nul == bytes.npos) return;
  const auto linesBefore = std::ranges::count(bytes.substr(0, nul), '\n');
  throw diagnostics::ProblemError(
      {.file = name,
       .place = diagnostics::Place{static_cast<std::uint64_t>(linesBefore) + 1, 1},
       .what = "this line contains a NUL, which no path does",
       .remedy = "add -0 if the paths end in NUL"});
}

}  // namespace

std::vector<std::string> readFileList(const std::string& name, bool isNulSeparated) {
  const std::string bytes = files::readWhole(name);
  if (!isNulSeparated) requireNoNul(name, bytes);
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
