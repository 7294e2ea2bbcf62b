#pragma once

#include <cstdint>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/progress/InputProgress.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::html {

/// A parsed and checked file, borrowed.
struct PageFile {
  /// Its number on the page, from 1: ids begin with it.
  std::uint64_t number;
  /// All lines and the diagnostics.
  const check::catalogue::CheckedFile& checked;
  /// The document, with all nodes.
  const session::ParsedSnippet& parsed;
  /// The number of the line that starts the appendix; 0 if none does.
  std::uint64_t appendixLine = 0;
  /// What writing it is of the work on the file.
  progress::Stage stage = {};
};

/// How many there are in a file.
struct SectionCounts {
  std::uint64_t lines = 0;
  std::uint64_t tasks = 0;
  std::uint64_t anchors = 0;
  std::uint64_t outputs = 0;
  std::uint64_t controls = 0;
};

/// Returns the numbers of `file`. Linear.
SectionCounts countParts(const PageFile& file);

/// What is written in place of a diagnostic about a task marker without a partner, whose message
/// depends on the other files of the run: it, or kDeferredMark.
enum class Unpaired { kWritten, kDeferred };

/// Marks the place of a deferred diagnostic. No other text of a section contains it.
inline constexpr char kDeferredMark = '\x01';

/// Appends the section of the page about `file` to `output`: heading, outline, lines, appendix.
/// Linear. Throws OutputError.
void writeSection(files::OutputText& output, const PageFile& file, const SectionCounts& counts,
                  Unpaired unpaired);

}  // namespace tessera::html
