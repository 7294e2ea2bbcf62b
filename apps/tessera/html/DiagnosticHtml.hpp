#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/catalogue/CheckedFile.hpp"
#include "tessera/html/HtmlText.hpp"

namespace tessera::html {

/// A diagnostic of a file, by its index there, and the number of the file on the page.
struct FoundDiagnostic {
  std::uint64_t fileNumber;
  const check::catalogue::CheckedFile& file;
  std::size_t index;

  const check::catalogue::Diagnostic& diagnostic() const { return file.diagnostics[index]; }
};

/// Appends a diagnostic as it appears below its line: the message, the source with the place
/// marked, notes, the fix, and a link to the explanation.
void addDiagnostic(HtmlText& html, const FoundDiagnostic& found);

/// Appends a diagnostic as an item of the list of all, with a link to its place.
void addListItem(HtmlText& html, const FoundDiagnostic& found);

/// Appends the explanation of a kind of diagnostic.
void addExplanation(HtmlText& html, const check::catalogue::CatalogueEntry& entry);

}  // namespace tessera::html
