#include "tessera/inputs/GlobFilter.hpp"

#include <algorithm>
#include <string_view>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::inputs {
namespace {

bool isExclusion(const std::string& glob) {
  return glob.starts_with('!');
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
  std::vector<std::string_view> lines(globs.begin(), globs.end());
  if (!selectsAccepted) {
    for (std::string_view& line : lines) line.remove_prefix(1);
  }
  rules.emplace(lines);
}

bool GlobFilter::accept(const std::string& path) const {
  return !rules || select(path) == selectsAccepted;
}

/// What no glob matches is like the directory that it is in.
bool GlobFilter::select(std::string path) const {
  while (!path.empty()) {
    if (const auto selected = rules->select(path)) return *selected;
    path.pop_back();
    path.resize(path.rfind('/') + 1);
  }
  return false;
}

}  // namespace tessera::inputs
