#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tessera/inputs/PathRules.hpp"

namespace tessera::inputs {

/// Accepts the paths that a list of globs selects. A glob that begins with "!" excludes; where all
/// of them exclude, everything else is accepted. Without a glob everything is.
class GlobFilter {
 public:
  /// Throws ProblemError for a glob that cannot be used, and as PathRules does.
  explicit GlobFilter(const std::vector<std::string>& globs);

  /// `path` is that of a file, relative to the directory that the user named.
  bool accept(const std::string& path) const;

 private:
  bool select(std::string path) const;

  std::optional<PathRules> rules;
  // Whether the rules select what is accepted, not what is excluded.
  bool selectsAccepted = false;
};

}  // namespace tessera::inputs
