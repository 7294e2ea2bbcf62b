#include "tessera/inputs/PathRules.hpp"

#include <dlfcn.h>
#include <git2.h>
#include <git2/sys/repository.h>

#include <utility>

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
  decltype(&::git_repository_set_workdir) setWorkFolder = nullptr;
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
  find(setWorkFolder, "git_repository_set_workdir");
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

/// A repository in memory that consists of rules only.
struct PathRules::Repository {
  Repository() { git.check(git.newRepository(&repository), "repository"); }
  ~Repository() { git.freeRepository(repository); }
  Repository(const Repository&) = delete;
  Repository& operator=(const Repository&) = delete;

  const GitLibrary& git = GitLibrary::get();
  git_repository* repository = nullptr;
};

PathRules::PathRules(std::unique_ptr<Repository> repository) : repository(std::move(repository)) {}
PathRules::~PathRules() = default;
PathRules::PathRules(PathRules&& other) noexcept = default;
PathRules& PathRules::operator=(PathRules&& other) noexcept = default;

PathRules PathRules::inFolder(const std::string& folder) {
  auto made = std::make_unique<Repository>();
  made->git.check(made->git.setWorkFolder(made->repository, folder.c_str(), 0), folder);
  return PathRules(std::move(made));
}

PathRules PathRules::fromLines(const std::vector<std::string>& lines) {
  auto made = std::make_unique<Repository>();
  for (const std::string& line : lines) {
    made->git.check(made->git.addRule(made->repository, line.c_str()), line);
  }
  return PathRules(std::move(made));
}

bool PathRules::canRead(std::string_view line) noexcept {
  const std::size_t first = line.find_first_not_of(" \t\r!/");
  return first == line.npos || (line[first] != '\v' && line[first] != '\f');
}

bool PathRules::select(const std::string& path) const {
  int isSelected = 0;
  repository->git.check(
      repository->git.isIgnored(&isSelected, repository->repository, path.c_str()), path);
  return isSelected != 0;
}

}  // namespace tessera::inputs
