#include "ParserContest.hpp"

#include <ostream>
#include <utility>

#include "aims.hpp"
#include "floor/Floor.hpp"
#include "harness/report.hpp"
#include "parsers/parsers.hpp"
#include "peers/peers.hpp"

namespace bench {

namespace {

/// Marked lines are longer and their nodes more: a part of the lines says as much.
constexpr std::size_t kStride = 4;
constexpr std::size_t kStrideOfCrowdedLines = 400;

}  // namespace

ParserContest::ParserContest(const Corpus& lines) {
  addPeers(lines);
  addParsers(lines);
  addMarked(kPlain, MarkedCorpus::make(lines, kStride, 1, 0));
  addMarked(kOneIn100, MarkedCorpus::make(lines, kStride, 100, 1));
  addMarked(kOneIn10, MarkedCorpus::make(lines, kStride, 10, 1));
  addMarked(kOneALine, MarkedCorpus::make(lines, kStride, 1, 1));
  addMarked(k100ALine, MarkedCorpus::make(lines, kStrideOfCrowdedLines, 1, 100));
}

void ParserContest::addPeers(const Corpus& lines) {
  contest.add(kFloor, lines, floor::make);
  contest.add(kPugixml, lines, peers::makePugixml);
  contest.add(kMd4c, lines, peers::makeMd4c);
  contest.add(kLibxml2, lines, peers::makeLibxml2);
  contest.add(kCmark, lines, peers::makeCmark);
}

void ParserContest::addParsers(const Corpus& lines) {
  contest.add(kParseLine, lines, [](const Corpus& corpus) {
    return parsers::makeLineParser(corpus, parsers::contentsOf(corpus));
  });
  contest.add(kLists, lines, parsers::makeProviderLists);
}

void ParserContest::addMarked(const std::string& kind, MarkedCorpus lines) {
  const MarkedCorpus& marked = markedLines.emplace_back(std::move(lines));
  contest.add(kFloor + kind, marked.corpus, floor::make);
  contest.add(kParseLine + kind, marked.corpus, [&marked](const Corpus& corpus) {
    return parsers::makeLineParser(corpus, parsers::contentsOf(marked));
  });
}

void ParserContest::write(std::ostream& out) const {
  writeMeasurements(out, contest);
  if (!floorCounts(contest)) return;
  out << '\n';
  writeAims(out, contest);
}

}  // namespace bench
