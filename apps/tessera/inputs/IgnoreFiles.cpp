#include "tessera/inputs/IgnoreFiles.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/Descriptor.hpp"
#include "tessera/files/openBelow.hpp"
#include "tessera/files/readWhole.hpp"

namespace tessera::inputs {
namespace {

namespace fs = std::filesystem;

const std::string kName = ".gitignore";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void failReading(const std::string& path, const std::string& what) {
  throw diagnostics::ProblemError(
      {.file = path, .place = {}, .what = what, .remedy = "correct it, or add --no-ignore"});
}

/// Returns the file if there is one and it is not a symbolic link, which git does not follow here,
/// either.
std::optional<files::Descriptor> openRules(const std::string& path, std::size_t followed) {
  files::Descriptor file = files::openBelow(path, followed);
  if (file.get() < 0) {
    // The folder itself may have been replaced since it was found.
    if (errno == ENOENT || errno == ELOOP || errno == ENOTDIR) return std::nullopt;
    failReading(path, "cannot be opened: " + std::generic_category().message(errno));
  }
  struct stat status;
  if (::fstat(file.get(), &status) != 0) {
    failReading(path, "cannot be read: " + std::generic_category().message(errno));
  }
  if (S_ISDIR(status.st_mode)) return std::nullopt;
  if (!S_ISREG(status.st_mode)) failReading(path, "is not a regular file");
  return file;
}

/// Spaces at the end do not count, unless "\" comes before them.
std::string_view trimEnd(std::string_view line) {
  std::size_t size = 0;
  for (std::size_t place = 0; place < line.size(); ++place) {
    if (line[place] == ' ') continue;
    if (line[place] == '\\') ++place;
    size = std::min(place + 1, line.size());
  }
  return line.substr(0, size);
}

/// Calls `use` with the rule in each line that has one.
template <class Use>
void forEachRule(std::string_view text, const Use& use) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = trimEnd(line.substr(0, line.find('\0')));
    if (!line.empty() && !line.starts_with('#')) use(line);
  }
}

/// Returns the rules of a .gitignore file, or nothing if there is none.
std::optional<PathRules> readRules(const std::string& path, std::size_t followed) {
  auto file = openRules(path, followed);
  if (!file) return std::nullopt;
  PathRules rules;
  forEachRule(files::readWhole(path, std::move(*file)), [&](auto rule) { rules.add(rule); });
  return rules;
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
    const std::string path = (parent / "").string();
    enter("", path, path.size());
    parent /= name;
    prefix += name.string() + '/';
    if (!selects(prefix)) continue;
    levels.clear();
    return;
  }
}

void IgnoreFiles::enter(const std::string& path, const std::string& folder,
                        std::size_t namedBytes) {
  if (auto rules = readRules(folder + kName, namedBytes))
    levels.push_back({prefix + path, std::move(*rules)});
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
