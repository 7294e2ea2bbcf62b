#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tessera/inputs/PathRules.hpp"

namespace tessera::inputs {

/// Accepts the paths that a list of globs selects. A glob that begins with "!" excludes; where all
/// of them exclude, everything else is accepted. Without a glob everything is.
class GlobFilter {
 public:
  /// Throws ProblemError for an empty glob.
  explicit GlobFilter(const std::vector<std::string>& globs);

  /// `path` is that of a file, relative to the directory that the user named.
  bool accept(std::string_view path) const;

 private:
  PathRules rules;
  // Whether what no glob matches is accepted.
  bool acceptsOthers = true;
};

}  // namespace tessera::inputs
