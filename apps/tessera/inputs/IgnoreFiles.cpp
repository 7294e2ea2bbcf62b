#include "tessera/inputs/IgnoreFiles.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kName = ".gitignore";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void failReading(const std::string& path, std::optional<diagnostics::Place> place,
                              const std::string& what) {
  throw diagnostics::ProblemError(
      {.file = path, .place = place, .what = what, .remedy = "correct it, or add --no-ignore"});
}

std::vector<std::string_view> linesOf(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// Returns the rules of a .gitignore file, or none if there is none. A pipe would have to be waited
/// for.
std::optional<PathRules> readRules(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return std::nullopt;
  if (!S_ISREG(status.st_mode)) failReading(path, {}, "is not a regular file");
  const std::string text = files::readWhole(path);
  const std::vector<std::string_view> lines = linesOf(text);
  const auto unreadable = std::ranges::find_if_not(lines, PathRules::canRead);
  if (unreadable != lines.end()) {
    const auto number = static_cast<std::uint64_t>(unreadable - lines.begin() + 1);
    failReading(path, diagnostics::Place{number, 1},
                "the line begins with a vertical tab or a form feed");
  }
  return PathRules(lines);
}

/// Returns the root of the git work tree that contains `directory`, or `directory` without one.
fs::path findRoot(const fs::path& directory) {
  std::error_code ignored;
  for (fs::path folder = directory;; folder = folder.parent_path()) {
    if (fs::exists(folder / ".git", ignored)) return folder;
    if (folder == folder.root_path()) return directory;
  }
}

}  // namespace

IgnoreFiles::IgnoreFiles(const std::string& directory) {
  std::error_code error;
  const fs::path folder = fs::canonical(directory, error);
  // One that does not exist has no files, either.
  if (!error) readAbove(folder, findRoot(folder));
}

void IgnoreFiles::readAbove(const fs::path& folder, const fs::path& root) {
  if (folder == root) return;
  fs::path parent = root;
  for (const fs::path& name : folder.lexically_relative(root)) {
    enter("", (parent / kName).string());
    parent /= name;
    prefix += name.string() + '/';
    if (!selects(prefix)) continue;
    levels.clear();
    return;
  }
}

void IgnoreFiles::enter(const std::string& path, const std::string& name) {
  if (auto rules = readRules(name)) levels.push_back({prefix + path, std::move(*rules)});
}

bool IgnoreFiles::exclude(const std::string& path) {
  const std::string whole = prefix + path;
  while (!levels.empty() && !whole.starts_with(levels.back().path)) levels.pop_back();
  return selects(whole);
}

/// Of several files, the innermost one that has a rule for the path counts.
bool IgnoreFiles::selects(const std::string& path) const {
  for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
    if (const auto selected = level->rules.select(path.substr(level->path.size()))) {
      return *selected;
    }
  }
  return false;
}

}  // namespace tessera::inputs
