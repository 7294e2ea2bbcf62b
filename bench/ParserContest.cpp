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

/// Marked lines are longer and have more nodes, so a part of the lines is enough.
constexpr std::size_t kStride = 4;
constexpr std::size_t kStrideOfCrowdedLines = 400;

}  // namespace

ParserContest::ParserContest(const Corpus& lines, const std::string& onlySubject)
    : contest(onlySubject) {
  addPeers(lines);
  addParsers(lines);
  addMarked(kPlain, lines, {kStride, 1, 0});
  addMarked(kOneIn100, lines, {kStride, 100, 1});
  addMarked(kOneIn10, lines, {kStride, 10, 1});
  addMarked(kOneALine, lines, {kStride, 1, 1});
  addMarked(k100ALine, lines, {kStrideOfCrowdedLines, 1, 100});
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
  contest.add(kService, lines, [](const Corpus& corpus) {
    return parsers::makeServiceParser(corpus, parsers::contentsOf(corpus));
  });
  contest.add(kTasks, lines, parsers::makeTaskParser);
  contest.add(kTrace, lines, parsers::makeTrace);
}

void ParserContest::addMarked(const std::string& kind, const Corpus& lines,
                              const Marking& marking) {
  if (!contest.takes(kFloor + kind) && !contest.takes(kParseLine + kind)) return;
  const MarkedCorpus& marked = markedLines.emplace_back(
      MarkedCorpus::make(lines, marking.stride, marking.every, marking.markersALine));
  contest.add(kFloor + kind, marked.corpus, floor::make);
  contest.add(kParseLine + kind, marked.corpus, [&marked](const Corpus& corpus) {
    return parsers::makeLineParser(corpus, parsers::contentsOf(marked));
  });
}

void ParserContest::write(std::ostream& out) const {
  writeMeasurements(out, contest);
  if (!hasFloor(contest) || !floorCounts(contest)) return;
  out << '\n';
  writeAims(out, contest);
}

}  // namespace bench
