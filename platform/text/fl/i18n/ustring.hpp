#pragma once

#include <string>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// A text of 16-bit code units (UTF-16). It may contain unpaired surrogates.
using ustring = std::u16string;

/// Converts UTF-8 bytes to 16-bit code units.
///
/// Every ill-formed sequence becomes one U+FFFD; a sequence ends where it can no longer become
/// well-formed (the practice of the WHATWG encoding standard, "maximal subpart" in Unicode).
/// Throws nothing but std::bad_alloc. Linear.
QUENLITH_TEXT_EXPORT ustring utf8_to_ustring(std::string_view text);

/// Converts 16-bit code units to UTF-8 bytes.
///
/// Every unpaired surrogate becomes U+FFFD. The result never has fewer bytes than `text` has
/// units. Throws nothing but std::bad_alloc. Linear.
QUENLITH_TEXT_EXPORT std::string ustring_to_utf8(std::u16string_view text);

}  // namespace fl::i18n
