#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessera::inputs {

/// Rules with the patterns of .gitignore, each of which selects paths or, if it begins with "!",
/// takes them back. A later rule counts more. They select what git selects.
class PathRules {
 public:
  void add(std::string_view rule);

  /// Returns whether the last rule that matches `path` selects it; nothing if none matches. `path`
  /// is relative to the folder of the rules and ends in "/" if it is a directory. What the rules
  /// say of the directories above it is not considered.
  std::optional<bool> select(std::string_view path) const;

 private:
  struct Rule {
    explicit Rule(std::string_view text);

    std::string pattern;
    bool selects;
    bool isForDirectories;
    // Whether the pattern is compared with the name only, in any folder.
    bool isForNames;
  };

  std::vector<Rule> rules;
};

}  // namespace tessera::inputs
