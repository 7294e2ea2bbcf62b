#pragma once

#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"

namespace quenlith::syntax::test {

/// Returns the markers of a text, each as "position+length canonical [begin,end)", with " | "
/// between them: those of the known elements, or of all.
std::string scan(const fl::i18n::ustring& text);
std::string scanAny(const fl::i18n::ustring& text);

/// A text and what `scan` must return for it.
struct ScanCase {
  fl::i18n::ustring text;
  std::string markers;
};

void expectScans(const std::vector<ScanCase>& cases);

}  // namespace quenlith::syntax::test
