#include "tessera/inputs/IgnoreFiles.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {
namespace {

namespace fs = std::filesystem;

constexpr const char* kName = ".gitignore";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void failReading(const std::string& path, std::optional<diagnostics::Place> place,
                              const std::string& what) {
  throw diagnostics::ProblemError(
      {.file = path, .place = place, .what = what, .remedy = "correct it, or add --no-ignore"});
}

/// Returns the number of the first line that libgit2 cannot read.
std::optional<std::uint64_t> findUnreadableLine(std::string_view rules) {
  if (rules.starts_with(kByteOrderMark)) rules.remove_prefix(kByteOrderMark.size());
  for (std::uint64_t number = 1; !rules.empty(); ++number) {
    const std::size_t end = std::min(rules.find('\n'), rules.size());
    if (!PathRules::canRead(rules.substr(0, end))) return number;
    rules.remove_prefix(std::min(end + 1, rules.size()));
  }
  return std::nullopt;
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
  folder = fs::canonical(directory, error);
  // One that does not exist has no files, either.
  root = error ? fs::path("/") : findRoot(folder);
  if (error) folder = root;
  for (fs::path parent = folder; parent != root && !above;) {
    parent = parent.parent_path();
    above = fs::exists(parent / kName, error);
  }
}

/// libgit2 would wait for a pipe, and does not come back from some lines.
void IgnoreFiles::admit(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return;
  if (!S_ISREG(status.st_mode)) failReading(path, {}, "is not a regular file");
  if (const auto line = findUnreadableLine(files::readWhole(path))) {
    failReading(path, diagnostics::Place{*line, 1},
                "the line begins with a vertical tab or a form feed");
  }
}

bool IgnoreFiles::exclude(const std::string& path) {
  if (!rules) readRules();
  return rules->select(prefix + path);
}

void IgnoreFiles::readRules() {
  for (fs::path parent = folder; parent != root;) {
    parent = parent.parent_path();
    admit((parent / kName).string());
  }
  rules = PathRules::inFolder(root.string());
  if (root == folder) return;
  prefix = folder.lexically_relative(root).string() + '/';
  if (!rules->select(prefix)) return;
  rules = PathRules::inFolder(folder.string());
  prefix.clear();
}

}  // namespace tessera::inputs
