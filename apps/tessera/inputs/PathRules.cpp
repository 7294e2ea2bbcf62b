#include "tessera/inputs/PathRules.hpp"

#include <dlfcn.h>
#include <git2.h>
#include <git2/sys/repository.h>

#include <algorithm>
#include <memory>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::inputs {
namespace {

constexpr const char* kLibrary = "libgit2.so." LIBGIT2_SOVERSION;

[[noreturn]] void failLoading() {
  const char* reason = ::dlerror();
  throw diagnostics::ProblemError(
      {.file = kLibrary,
       .place = {},
       .what = std::string("cannot be loaded: ") + (reason == nullptr ? "no reason" : reason),
       .remedy = "install libgit2, or name files in place of directories"});
}

}  // namespace

/// The functions of libgit2 that are used.
struct PathRules::GitLibrary {
  GitLibrary();

  static const GitLibrary& get() {
    static const GitLibrary library;
    return library;
  }

  /// Throws ProblemError if `result` is an error.
  void check(int result, const std::string& what) const;

  void* handle = ::dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
  decltype(&::git_libgit2_init) initialize = nullptr;
  decltype(&::git_libgit2_opts) setOption = nullptr;
  decltype(&::git_repository_new) newRepository = nullptr;
  decltype(&::git_repository_free) freeRepository = nullptr;
  decltype(&::git_ignore_add_rule) addRule = nullptr;
  decltype(&::git_ignore_path_is_ignored) isIgnored = nullptr;
  decltype(&::git_error_last) lastError = nullptr;

 private:
  template <class Function>
  void find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(::dlsym(handle, name));
    if (function == nullptr) failLoading();
  }
};

PathRules::GitLibrary::GitLibrary() {
  if (handle == nullptr) failLoading();
  find(initialize, "git_libgit2_init");
  find(setOption, "git_libgit2_opts");
  find(newRepository, "git_repository_new");
  find(freeRepository, "git_repository_free");
  find(addRule, "git_ignore_add_rule");
  find(isIgnored, "git_ignore_path_is_ignored");
  find(lastError, "git_error_last");
  if (initialize() < 0) {
    throw diagnostics::ProblemError({.file = kLibrary,
                                     .place = {},
                                     .what = "cannot be initialized",
                                     .remedy = "name files in place of directories"});
  }
  // The same files are taken for every user and on every machine.
  for (const int level : {GIT_CONFIG_LEVEL_PROGRAMDATA, GIT_CONFIG_LEVEL_SYSTEM,
                          GIT_CONFIG_LEVEL_XDG, GIT_CONFIG_LEVEL_GLOBAL}) {
    setOption(GIT_OPT_SET_SEARCH_PATH, level, "");
  }
}

void PathRules::GitLibrary::check(int result, const std::string& what) const {
  if (result >= 0) return;
  const git_error* error = lastError();
  throw diagnostics::ProblemError(
      {.file = what,
       .place = {},
       .what = std::string("cannot be matched: ") +
               (error == nullptr ? "libgit2 gives no reason" : error->message),
       .remedy = "correct it, or add --no-ignore"});
}

/// Patterns that match a path or not, in a repository in memory.
class PathRules::Patterns {
 public:
  Patterns() {
    git.check(git.newRepository(&repository), "repository");
    add(kAnything);
  }
  ~Patterns() { git.freeRepository(repository); }
  Patterns(const Patterns&) = delete;
  Patterns& operator=(const Patterns&) = delete;

  /// libgit2 leaves out a negation if it sees no earlier rule that the negation could change, and
  /// asks the directories above about a path that no rule matches. Here each pattern is a negation
  /// and follows a rule that matches everything, so neither happens.
  void addPattern(std::string_view pattern) { add('!' + std::string(pattern)); }

  bool match(const std::string& path) const {
    int isIgnored = 0;
    git.check(git.isIgnored(&isIgnored, repository, path.c_str()), path);
    return isIgnored == 0;
  }

 private:
  // libgit2 does not count "*" as a rule that a negation could change.
  static constexpr const char* kAnything = "?*";

  void add(const std::string& rule) { git.check(git.addRule(repository, rule.c_str()), rule); }

  const GitLibrary& git = GitLibrary::get();
  git_repository* repository = nullptr;
};

/// The patterns of rules in a row that all select, or all take back.
struct PathRules::Group {
  bool selects;
  std::unique_ptr<Patterns> patterns;
};

PathRules::PathRules(const std::vector<std::string_view>& lines) {
  for (const std::string_view line : lines) {
    if (line.empty() || line.starts_with('#')) continue;
    const bool selects = !line.starts_with('!');
    if (groups.empty() || groups.back().selects != selects) {
      groups.push_back({selects, std::make_unique<Patterns>()});
    }
    groups.back().patterns->addPattern(selects ? line : line.substr(1));
  }
}

PathRules::~PathRules() = default;
PathRules::PathRules(PathRules&& other) noexcept = default;
PathRules& PathRules::operator=(PathRules&& other) noexcept = default;

bool PathRules::canRead(std::string_view line) noexcept {
  const std::size_t first = line.find_first_not_of(" \t\r!/");
  return first == line.npos || (line[first] != '\v' && line[first] != '\f');
}

std::optional<bool> PathRules::select(const std::string& path) const {
  const auto deciding = std::find_if(groups.rbegin(), groups.rend(), [&path](const Group& group) {
    return group.patterns->match(path);
  });
  if (deciding == groups.rend()) return std::nullopt;
  return deciding->selects;
}

}  // namespace tessera::inputs
