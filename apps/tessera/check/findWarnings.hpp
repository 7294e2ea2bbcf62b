#pragma once

#include <vector>

#include "tessera/session/FileParser.hpp"
#include "tessera/source/readAppendix.hpp"

namespace tessera::check {

/// Returns what is wrong with a parsed file, in ascending order of place: the parsers' failures,
/// the damaged lines of its appendix, the entries that nothing refers to. The place of a failure is
/// the first character of its marker, or of its line when the marker is not known.
std::vector<source::AppendixWarning> findWarnings(const session::ParsedFile& file);

}  // namespace tessera::check
