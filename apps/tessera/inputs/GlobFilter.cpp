#include "tessera/inputs/GlobFilter.hpp"

#include <algorithm>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::inputs {
namespace {

bool isExclusion(const std::string& glob) {
  return glob.starts_with('!');
}

std::string exclusionAsRule(const std::string& glob) {
  return glob.substr(1);
}

void requireUsable(const std::string& glob) {
  const bool isLine = !glob.empty() && glob != "!" && glob.find('\n') == std::string::npos;
  if (isLine && PathRules::canRead(glob)) return;
  throw diagnostics::ProblemError(
      {.file = "tessera",
       .place = {},
       .what = "\"" + glob + "\" is not a glob",
       .remedy = "use a pattern like \"*.py\", or \"!*.py\" to exclude"});
}

}  // namespace

GlobFilter::GlobFilter(const std::vector<std::string>& globs) {
  if (globs.empty()) return;
  std::ranges::for_each(globs, requireUsable);
  selectsAccepted = !std::ranges::all_of(globs, isExclusion);
  if (selectsAccepted) {
    rules = PathRules::fromLines(globs);
  } else {
    std::vector<std::string> excluded;
    std::ranges::transform(globs, std::back_inserter(excluded), exclusionAsRule);
    rules = PathRules::fromLines(excluded);
  }
}

bool GlobFilter::accept(const std::string& path) const {
  return !rules || rules->select(path) == selectsAccepted;
}

}  // namespace tessera::inputs
