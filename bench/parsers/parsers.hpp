#pragma once

#include "harness/Corpus.hpp"
#include "harness/MarkedCorpus.hpp"
#include "harness/Subject.hpp"
#include "parsers/expectDocument.hpp"

namespace bench::parsers {

/// What a parse makes of lines without markers.
Contents contentsOf(const Corpus& plainLines);
Contents contentsOf(const MarkedCorpus& markedLines);

/// Parses each line by `LineNodeParserService::parseLine` with a provider that has its lists.
std::unique_ptr<Subject> makeLineParser(const Corpus& corpus, const Contents& wanted);

/// Asks that provider for its two lists, once a line, and does nothing else.
std::unique_ptr<Subject> makeProviderLists(const Corpus& corpus);

}  // namespace bench::parsers
