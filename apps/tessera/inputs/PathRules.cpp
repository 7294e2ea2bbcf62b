#include "tessera/inputs/PathRules.hpp"

#include <dlfcn.h>
#include <git2.h>
#include <git2/sys/repository.h>

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

/// Finds whether the last of some patterns that matches a path selects it.
///
/// libgit2 leaves out a negation if it sees no earlier rule that the negation could change, and
/// asks the directories above about a path that no rule matches. Here a rule that matches
/// everything comes first, and a pattern that selects is a negation, so neither happens.
class PathRules::Patterns {
 public:
  Patterns() {
    git_repository* made = nullptr;
    git.check(git.newRepository(&made), "repository");
    repository.reset(made);
    add(kAnything);
  }

  void addSelecting(std::string_view pattern) { add('!' + std::string(pattern)); }
  void addOther(std::string_view pattern) {
    const bool isEscaped = pattern.starts_with('!') || pattern.starts_with('#');
    add((isEscaped ? "\\" : "") + std::string(pattern));
  }

  bool select(const std::string& path) const {
    int isIgnored = 0;
    git.check(git.isIgnored(&isIgnored, repository.get(), path.c_str()), path);
    return isIgnored == 0;
  }

 private:
  // libgit2 does not count "*" as a rule that a negation could change.
  static constexpr const char* kAnything = "?*";

  void add(const std::string& rule) {
    git.check(git.addRule(repository.get(), rule.c_str()), rule);
  }

  const GitLibrary& git = GitLibrary::get();
  std::unique_ptr<git_repository, decltype(&::git_repository_free)> repository{nullptr,
                                                                               git.freeRepository};
};

PathRules::PathRules(const std::vector<std::string_view>& lines) {
  for (const std::string_view line : lines) {
    if (line.empty() || line.starts_with('#')) continue;
    if (!all) {
      all = std::make_unique<Patterns>();
      selecting = std::make_unique<Patterns>();
    }
    const bool selects = !line.starts_with('!');
    const std::string_view pattern = selects ? line : line.substr(1);
    all->addSelecting(pattern);
    selects ? selecting->addSelecting(pattern) : selecting->addOther(pattern);
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
  if (!all || !all->select(path)) return std::nullopt;
  return selecting->select(path);
}

}  // namespace tessera::inputs
