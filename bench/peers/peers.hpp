#pragma once

#include "harness/Corpus.hpp"
#include "harness/Subject.hpp"

namespace bench::peers {

/// Builds a tree of one element per line with its text out of XML, by pugixml.
std::unique_ptr<Subject> makePugixml(const Corpus& corpus);

/// Like `makePugixml`, by libxml2.
std::unique_ptr<Subject> makeLibxml2(const Corpus& corpus);

/// Reads the lines as Markdown, by md4c: events and no tree.
std::unique_ptr<Subject> makeMd4c(const Corpus& corpus);

/// Builds the tree of the lines read as Markdown, by cmark.
std::unique_ptr<Subject> makeCmark(const Corpus& corpus);

}  // namespace bench::peers
