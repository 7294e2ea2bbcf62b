#pragma once

#include <string>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::catalogue {

std::string_view nameOf(Severity severity) noexcept;

/// Returns everything about a kind of diagnostic as text for a terminal: the explanation, an
/// example before and after, and what `check --fix` does. Rows have at most 80 columns, except
/// those of the example.
std::string describeAsText(const CatalogueEntry& entry);

/// Like `describeAsText`, but as Markdown, without a heading.
std::string describeAsMarkdown(const CatalogueEntry& entry);

/// Returns the whole catalogue as Markdown: a table of the kinds and a section about each.
std::string describeCatalogue();

}  // namespace tessera::check::catalogue
