#pragma once

#include "harness/Corpus.hpp"
#include "harness/MarkedCorpus.hpp"
#include "harness/Subject.hpp"
#include "parsers/expectDocument.hpp"

namespace bench::parsers {

/// Returns the expected result of a parse of lines without markers.
Contents contentsOf(const Corpus& plainLines);
Contents contentsOf(const MarkedCorpus& markedLines);

/// Parses each line with `LineNodeParserService::parseLine` and a provider with fixed lists.
std::unique_ptr<Subject> makeLineParser(const Corpus& corpus, const Contents& wanted);

/// Gets the two lists of that provider once per line, and does nothing else.
std::unique_ptr<Subject> makeProviderLists(const Corpus& corpus);

/// Parses each line by the default parser, found as a service in a running framework in which no
/// contributor is registered. One at a time.
std::unique_ptr<Subject> makeServiceParser(const Corpus& corpus, const Contents& wanted);

/// Passes the lines to the task parser and the default parser, with a task in 10 of 100 lines.
std::unique_ptr<Subject> makeTaskParser(const Corpus& corpus);

/// Emits one progress record per line while logging is off.
std::unique_ptr<Subject> makeTrace(const Corpus& corpus);

}  // namespace bench::parsers
