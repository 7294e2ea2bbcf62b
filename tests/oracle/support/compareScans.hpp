#pragma once

#include <string>
#include <vector>

#include "fl/i18n/ustring.hpp"
#include "oracle/markers/MarkerTwin.hpp"

namespace quenlith::oracle {

/// Compares the scanner, in all its operations, with what the twin found in `text`: `known` with
/// the known elements, `any` with any element.
///
/// Returns where they differ, with the text, as text for a person; empty if they agree.
std::string compareScans(const fl::i18n::ustring& text, const std::vector<TwinMarker>& known,
                         const std::vector<TwinMarker>& any);

}  // namespace quenlith::oracle
