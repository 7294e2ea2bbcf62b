#include "tessera/inputs/GlobFilter.hpp"

#include <algorithm>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::inputs {
namespace {

bool isExclusion(const std::string& glob) {
  return glob.starts_with('!');
}

void requireUsable(const std::string& glob) {
  if (!glob.empty() && glob != "!") return;
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "\"" + glob + "\" is not a glob",
       .remedy = "use a pattern like \"*.py\", or \"!*.py\" to exclude"});
}

}  // namespace

GlobFilter::GlobFilter(const std::vector<std::string>& globs) {
  std::ranges::for_each(globs, requireUsable);
  acceptsOthers = std::ranges::all_of(globs, isExclusion);
  for (const std::string& glob : globs) rules.add(glob);
}

/// What no glob matches is like the directory that it is in.
bool GlobFilter::accept(std::string_view path) const {
  while (!path.empty()) {
    if (const auto selected = rules.select(path)) return *selected;
    path.remove_suffix(1);
    path = path.substr(0, path.rfind('/') + 1);
  }
  return acceptsOthers;
}

}  // namespace tessera::inputs
