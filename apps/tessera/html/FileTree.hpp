#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/OutputText.hpp"

namespace tessera::html {

/// A file of a page.
struct PageEntry {
  std::string path;
  /// Its number on the page.
  std::uint64_t number = 0;
  std::uint64_t failures = 0;
  std::uint64_t warnings = 0;
  /// Why it could not be parsed; such a file has no section.
  std::optional<diagnostics::Problem> problem = std::nullopt;
};

/// Appends the files as a tree of their folders, each with a link to its section. Throws
/// OutputError.
void writeFileTree(files::OutputText& output, const std::vector<PageEntry>& entries);

}  // namespace tessera::html
