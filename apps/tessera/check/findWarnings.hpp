#pragma once

#include <vector>

#include "tessera/session/FileParser.hpp"
#include "tessera/source/readAppendix.hpp"

namespace tessera::check {

/// Returns what is wrong with a parsed file, ascending by place: the parsers' failures, the
/// damaged lines of its appendix, the entries that nothing refers to. A failure stands where
/// its marker begins, or at the start of its line when the marker cannot be told.
std::vector<source::AppendixWarning> findWarnings(const session::ParsedFile& file);

}  // namespace tessera::check
