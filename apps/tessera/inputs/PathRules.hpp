#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessera::inputs {

/// Rules in the syntax of .gitignore, each of which selects paths. libgit2 reads and matches them;
/// it is loaded when it is first needed, because that takes as long as the rest of a short run.
///
/// Operations throw ProblemError when libgit2 cannot be loaded or reports an error.
class PathRules {
 public:
  /// The rules of the .gitignore files in `folder` and below. Their lines must be such that can be
  /// read.
  static PathRules inFolder(const std::string& folder);
  /// The rules `lines`, in order: a later one counts more. They must be such that can be read.
  static PathRules fromLines(const std::vector<std::string>& lines);

  ~PathRules();
  PathRules(PathRules&& other) noexcept;
  PathRules& operator=(PathRules&& other) noexcept;

  /// Returns whether libgit2 can read the line of a rule. It never comes back from one in which a
  /// vertical tab or a form feed comes first, after blanks, "!" and "/".
  static bool canRead(std::string_view line) noexcept;

  /// Returns whether the rules select `path`, which is relative to the folder and ends in "/" if it
  /// is a directory, or a directory above it.
  bool select(const std::string& path) const;

 private:
  struct GitLibrary;
  struct Repository;

  explicit PathRules(std::unique_ptr<Repository> repository);

  std::unique_ptr<Repository> repository;
};

}  // namespace tessera::inputs
