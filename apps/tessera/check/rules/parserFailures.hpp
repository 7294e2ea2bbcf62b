#pragma once

#include <vector>

#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::check::rules {

/// Adds a diagnostic for each failure that the parsers recorded in the document.
void checkParserFailures(const session::ParsedSnippet& snippet,
                         std::vector<catalogue::Diagnostic>& found);

}  // namespace tessera::check::rules
