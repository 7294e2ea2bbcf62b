#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/html/FileSection.hpp"
#include "tessera/html/FileTree.hpp"

namespace tessera::html {

/// What the page says about all files.
struct PageSummary {
  /// In the order of the inputs.
  std::vector<PageEntry> entries;
  SectionCounts counts;
  /// The number of diagnostics of each kind, in the order of the catalogue.
  std::vector<std::uint64_t> diagnosticsByKind;

  /// Adds the numbers of a file.
  void add(const SectionCounts& file);
  /// Adds the diagnostics of a file.
  void add(const check::catalogue::CheckedFile& file);

  std::uint64_t countDiagnostics() const noexcept;
};

/// Whether a page is a file, or is shown by a server and follows the changes of its files.
enum class PageUse { kFile, kLive };

// The parts of a page, in this order. Each appends to `output` and throws OutputError.

/// Everything up to and including the summary.
void beginPage(files::OutputText& output, const PageSummary& summary, PageUse use);

/// The frame of the list of all diagnostics; the caller writes the items between the two.
void beginDiagnosticList(files::OutputText& output, const PageSummary& summary);
void endDiagnosticList(files::OutputText& output, const PageSummary& summary);

/// What follows the sections of the files: the explanations of the diagnostics.
void endPage(files::OutputText& output, const PageSummary& summary);

}  // namespace tessera::html
