#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Choices.hpp"
#include "fuzz/MemoryFile.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/tessera/SourceFolder.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/inputs/listInputs.hpp"
#include "tessera/inputs/readFileList.hpp"

namespace quenlith::fuzz {

using Paths = std::vector<std::string>;

namespace {

const SourceFolder& folder() {
  static const SourceFolder made;
  return made;
}

// The files below `directory`, which is empty or ends in "/", as paths relative to the folder.
Paths list(const std::string& directory, tessera::inputs::InputOptions options) {
  const std::string root = folder().path() + '/';
  options.paths = {root + directory};
  Paths paths;
  auto inputs = listInputs(options, tessera::inputs::LeaveOut::kWhenRead);
  keepShard(inputs, options.shard);
  for (const auto& input : inputs) {
    require(input.isFound && input.path.starts_with(root), "a file is found in the folder");
    paths.push_back(input.path.substr(root.size()));
  }
  return paths;
}

Paths filesBelow(const std::string& directory) {
  Paths files = SourceFolder::files();
  std::erase_if(files, [&](const std::string& file) { return !file.starts_with(directory); });
  return files;
}

Paths differenceOf(const Paths& all, const Paths& without) {
  Paths rest;
  std::ranges::set_difference(all, without, std::back_inserter(rest));
  return rest;
}

/// Rules of a .gitignore by its documentation, for patterns of names, "?", "*", "**" as a whole
/// name, and "/". A pattern without a "/" but at its end matches names in any folder.
class Rules {
 public:
  explicit Rules(const Paths& patterns) : patterns(patterns) {}

  /// `path` is relative to the folder of the rules. A file in a folder that is excluded is
  /// excluded.
  bool exclude(const std::string& path) const {
    for (std::size_t end = path.find('/'); end != path.npos; end = path.find('/', end + 1)) {
      if (matchAny(path.substr(0, end), true)) return true;
    }
    return matchAny(path, false);
  }

 private:
  bool matchAny(const std::string& path, bool isFolder) const {
    return std::ranges::any_of(
        patterns, [&](const std::string& pattern) { return match(pattern, path, isFolder); });
  }

  static bool match(std::string_view pattern, std::string_view path, bool isFolder) {
    if (pattern.ends_with('/')) {
      if (!isFolder) return false;
      pattern.remove_suffix(1);
    }
    if (pattern.find('/') == pattern.npos) {
      return matchNames(pattern, path.substr(path.rfind('/') + 1));
    }
    if (pattern.starts_with('/')) pattern.remove_prefix(1);
    return matchNames(pattern, path);
  }

  // "**" at the end matches everything below, elsewhere any number of names, also none.
  static bool matchNames(std::string_view pattern, std::string_view path) {
    if (pattern == "**") return !path.empty();
    if (pattern.starts_with("**/")) {
      const std::size_t next = path.find('/');
      return matchNames(pattern.substr(3), path) ||
             (next != path.npos && matchNames(pattern, path.substr(next + 1)));
    }
    if (pattern.empty()) return path.empty();
    if (pattern.front() == '*') {
      return matchNames(pattern.substr(1), path) ||
             (!path.empty() && path.front() != '/' && matchNames(pattern, path.substr(1)));
    }
    if (path.empty()) return false;
    const bool isSame = pattern.front() == path.front();
    const bool isAny = pattern.front() == '?' && path.front() != '/';
    return (isSame || isAny) && matchNames(pattern.substr(1), path.substr(1));
  }

  Paths patterns;
};

std::string choosePattern(Choices& choices) {
  constexpr std::array<const char*, 12> kNames = {"a.py", "d", "f", "**", "*.py", "b*",
                                                  "?",    "e", "g", "*",  "d.*",  "?.p?"};
  std::string pattern = choices.flag() ? "/" : "";
  for (std::size_t names = choices.below(4); names > 0; --names) {
    pattern.append(choices.pick(kNames)).append("/");
  }
  pattern += choices.pick(kNames);
  return choices.flag() ? pattern + '/' : pattern;
}

Paths choosePatterns(Choices& choices) {
  Paths patterns(choices.below(4));
  for (std::string& pattern : patterns) pattern = choosePattern(choices);
  return patterns;
}

std::string joined(const Paths& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

// Rules of which the documentation says what they exclude.
void checkRules(Choices& choices) {
  const Paths top = choosePatterns(choices);
  const Paths below = choosePatterns(choices);
  folder().ignore("", joined(top));
  folder().ignore("d/", joined(below));
  const auto isExcluded = [&](const std::string& file) {
    return Rules(top).exclude(file) ||
           (file.starts_with("d/") && Rules(below).exclude(file.substr(2)));
  };
  Paths expected = SourceFolder::files();
  std::erase_if(expected, isExcluded);
  const Paths listed = list("", {});
  require(listed == expected, "rules exclude what they say", [&] {
    return joined(top) + "in d:\n" + joined(below) + "expected:\n" + joined(expected) +
           "listed:\n" + joined(listed);
  });
}

void checkShards(const std::string& directory, const Paths& files) {
  constexpr std::uint64_t kShards = 3;
  Paths together(files.size());
  for (std::uint64_t index = 1; index <= kShards; ++index) {
    tessera::inputs::InputOptions options;
    options.respectsIgnoreFiles = false;
    options.shard = {.index = index, .count = kShards};
    std::size_t place = index - 1;
    for (const std::string& file : list(directory, options)) {
      require(place < files.size(), "a shard has every third file");
      together[place] = file;
      place += kShards;
    }
  }
  require(together == files, "the shards together are the list");
}

// Any glob at all: what it selects and what its negation selects are all files together.
void checkGlob(const std::string& directory, const std::string& glob, const Paths& files) {
  if (glob.empty() || glob.starts_with('!')) return;
  tessera::inputs::InputOptions options;
  options.respectsIgnoreFiles = false;
  options.globs = {glob};
  const Paths selected = list(directory, options);
  options.globs = {'!' + glob};
  require(list(directory, options) == differenceOf(files, selected),
          "a glob excludes what it selects");
}

// Any bytes as rules, which are in the folder and in the one below.
void checkIgnored(const std::string& directory, const Paths& files, std::string_view rules,
                  std::string_view rulesBelow) {
  folder().ignore("", rules);
  folder().ignore("d/", rulesBelow);
  const Paths listed = list(directory, {});
  require(std::ranges::includes(files, listed), "rules only exclude files");
  require(list(directory, {}) == listed, "the same rules exclude the same files");
}

// No path has a NUL.
void requireRefused(const std::string& lines) {
  try {
    tessera::inputs::readFileList(lines, false);
  } catch (const tessera::diagnostics::ProblemError&) {
    return;
  }
  require(false, "a list of lines with a NUL is refused");
}

void checkFileList(std::string_view bytes, bool isNulSeparated) {
  static MemoryFile file;
  file.write(bytes);
  if (!isNulSeparated && bytes.find('\0') != bytes.npos) return requireRefused(file.path());
  Paths expected;
  Choices rest(bytes);
  while (!rest.atEnd()) {
    const std::string_view path = rest.until(isNulSeparated ? '\0' : '\n');
    if (!path.empty()) expected.emplace_back(path);
  }
  require(tessera::inputs::readFileList(file.path(), isNulSeparated) == expected,
          "a list of files is split at its separators");
}

}  // namespace

void checkInputs(std::string_view input) {
  Choices choices(input);
  const std::uint8_t flags = choices.byte();
  if ((flags & 1U) != 0) return checkRules(choices);
  const std::string directory = (flags & 2U) != 0 ? "d/" : "";
  const Paths files = filesBelow(directory);
  const std::string_view rules = choices.until('\0');
  checkIgnored(directory, files, rules, choices.until('\0'));
  checkShards(directory, files);
  checkGlob(directory, std::string(choices.until('\0')), files);
  checkFileList(choices.rest(), (flags & 4U) != 0);
}

}  // namespace quenlith::fuzz
