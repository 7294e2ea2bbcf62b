#pragma once

#include "harness/Corpus.hpp"
#include "harness/Subject.hpp"

namespace bench::peers {

/// Builds a tree from XML with one element per line, with pugixml.
std::unique_ptr<Subject> makePugixml(const Corpus& corpus);

/// Like `makePugixml`, with libxml2.
std::unique_ptr<Subject> makeLibxml2(const Corpus& corpus);

/// Parses the lines as Markdown with md4c, which emits events and builds no tree.
std::unique_ptr<Subject> makeMd4c(const Corpus& corpus);

/// Builds a tree of the lines as Markdown, with cmark.
std::unique_ptr<Subject> makeCmark(const Corpus& corpus);

}  // namespace bench::peers
