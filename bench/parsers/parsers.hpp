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

/// Asks that provider for its two lists, once per line, and does nothing else.
std::unique_ptr<Subject> makeProviderLists(const Corpus& corpus);

/// Parses each line by the default parser, found as a service in a running framework in which no
/// contributor is registered. One at a time.
std::unique_ptr<Subject> makeServiceParser(const Corpus& corpus, const Contents& wanted);

/// Hands the lines to the task parser and the default parser, a task over 10 of 100 lines.
std::unique_ptr<Subject> makeTaskParser(const Corpus& corpus);

/// Emits one progress record per line while logging is off.
std::unique_ptr<Subject> makeTrace(const Corpus& corpus);

}  // namespace bench::parsers
