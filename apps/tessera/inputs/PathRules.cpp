#include "tessera/inputs/PathRules.hpp"

#include <algorithm>

#include "tessera/inputs/matchGlob.hpp"

namespace tessera::inputs {

PathRules::Rule::Rule(std::string_view text)
    : selects(!text.starts_with('!')), isForDirectories(text.ends_with('/')) {
  if (!selects) text.remove_prefix(1);
  if (isForDirectories) text.remove_suffix(1);
  isForNames = text.find('/') == text.npos;
  if (text.starts_with('/')) text.remove_prefix(1);
  pattern = text;
}

void PathRules::add(std::string_view rule) {
  rules.emplace_back(rule);
}

std::optional<bool> PathRules::select(std::string_view path) const {
  const bool isDirectory = path.ends_with('/');
  if (isDirectory) path.remove_suffix(1);
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const auto matches = [&](const Rule& rule) {
    if (rule.isForDirectories && !isDirectory) return false;
    return matchGlob(rule.pattern, rule.isForNames ? name : path);
  };
  const auto last = std::find_if(rules.rbegin(), rules.rend(), matches);
  return last == rules.rend() ? std::nullopt : std::optional(last->selects);
}

}  // namespace tessera::inputs
