#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/check/suspects/findSuspects.hpp"
#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::check::rules {

/// What the rules have found in a file. A rule looks at what the rules before it found, so that one
/// cause becomes one diagnostic.
struct Findings {
  std::vector<catalogue::Diagnostic> diagnostics;
  suspects::Suspects suspects;
  /// The ids of the tasks that are reported already: nothing more is said about their entries.
  hashing::KeyedSet<std::u16string> brokenTasks;
  /// The lines of the appendix that are reported already.
  std::unordered_set<std::uint64_t> reportedLines;
};

}  // namespace tessera::check::rules
