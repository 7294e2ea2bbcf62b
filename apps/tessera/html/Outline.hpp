#pragma once

#include "tessera/html/FileSection.hpp"

namespace tessera::html {

/// Appends the outline of a file: links to its anchors and tasks. Nothing if it has none. Throws
/// OutputError.
void writeOutline(files::OutputText& output, const PageFile& file, const SectionCounts& counts);

}  // namespace tessera::html
