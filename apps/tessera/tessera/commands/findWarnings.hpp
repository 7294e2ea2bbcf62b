#pragma once

#include <vector>

#include "tessera/appendix/readAppendix.hpp"
#include "tessera/commands/FileParser.hpp"

namespace tessera::commands {

/// Returns what is wrong with a parsed file, ascending by place: the parsers' failures, the
/// damaged lines of its appendix, the entries that nothing refers to. A failure stands where
/// its marker begins, or at the start of its line when the marker cannot be told.
std::vector<appendix::AppendixWarning> findWarnings(const ParsedFile& file);

}  // namespace tessera::commands
