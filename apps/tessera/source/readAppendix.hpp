#pragma once

#include <string>
#include <vector>

#include "quenlith/syntax/Marker.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::source {

/// What is wrong with a line of an appendix. The text is UTF-8 without control characters.
struct AppendixWarning {
  diagnostics::Place place;
  std::string text;
};

/// The appendix of a file: its entries in order, duplicates left out, and what was wrong.
struct Appendix {
  struct Entry {
    quenlith::syntax::Marker marker;
    diagnostics::Place place;
  };

  std::vector<Entry> entries;
  /// In order of their places.
  std::vector<AppendixWarning> warnings;
};

/// Reads the appendix of `source`. A line that cannot be used is skipped with a warning.
Appendix readAppendix(const SourceText& source);

/// Returns a warning for each entry whose element and id no marker of `code` has.
std::vector<AppendixWarning> findUnusedEntries(const Appendix& appendix,
                                               const fl::i18n::ustring& code);

}  // namespace tessera::source
