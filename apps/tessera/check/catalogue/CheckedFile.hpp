#pragma once

#include <string>
#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/source/SourceLines.hpp"

namespace tessera::check::catalogue {

/// One file and what is wrong with it.
struct CheckedFile {
  /// The file as the user named it.
  std::string path;
  source::SourceLines lines;
  /// In ascending order of their places.
  std::vector<Diagnostic> diagnostics;
};

}  // namespace tessera::check::catalogue
