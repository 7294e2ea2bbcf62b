#include "tessera/inputs/readFileList.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

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
  if (!isNulSeparated && rest.starts_with(kByteOrderMark))
    rest.remove_prefix(kByteOrderMark.size());
  while (!rest.empty()) {
    std::string_view path = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(path.size() + 1, rest.size()));
    if (!isNulSeparated && path.ends_with('\r')) path.remove_suffix(1);
    if (!path.empty()) paths.emplace_back(path);
  }
  return paths;
}

}  // namespace tessera::inputs
