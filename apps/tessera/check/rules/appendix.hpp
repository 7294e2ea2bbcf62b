#pragma once

#include <vector>

#include "fl/i18n/ustring.hpp"
#include "tessera/check/catalogue/Diagnostic.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::check::rules {

/// Adds a diagnostic for each line of the appendix that is not a usable entry, and for each entry
/// that no marker of `code` refers to.
void checkAppendix(const source::SourceText& source, const fl::i18n::ustring& code,
                   std::vector<catalogue::Diagnostic>& found);

}  // namespace tessera::check::rules
