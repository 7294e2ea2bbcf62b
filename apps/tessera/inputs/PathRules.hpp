#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessera::inputs {

/// Rules in the syntax of .gitignore, each of which selects paths or, with "!", takes them back. A
/// later rule counts more. libgit2 matches them; it is loaded when it is first needed, because that
/// takes as long as the rest of a short run.
///
/// Operations throw ProblemError when libgit2 cannot be loaded or reports an error.
class PathRules {
 public:
  /// The lines must be such that can be read. Empty ones and comments are no rules.
  explicit PathRules(const std::vector<std::string_view>& lines);
  ~PathRules();
  PathRules(PathRules&& other) noexcept;
  PathRules& operator=(PathRules&& other) noexcept;

  /// Returns whether libgit2 can read the line of a rule. It never comes back from one in which a
  /// vertical tab or a form feed comes first, after blanks, "!" and "/".
  static bool canRead(std::string_view line) noexcept;

  /// Returns whether the last rule that matches `path` selects it; nothing if none matches. `path`
  /// is relative to the folder of the rules and ends in "/" if it is a directory. What the rules
  /// say of the directories above it is not considered.
  std::optional<bool> select(const std::string& path) const;

 private:
  struct GitLibrary;
  class Patterns;

  // Select what any rule matches, and what the last rule that matches selects. Null without a rule.
  std::unique_ptr<Patterns> all;
  std::unique_ptr<Patterns> selecting;
};

}  // namespace tessera::inputs
