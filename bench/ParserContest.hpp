#pragma once

#include <deque>
#include <iosfwd>
#include <string>

#include "harness/Contest.hpp"
#include "harness/MarkedCorpus.hpp"

namespace bench {

/// The parsers, their peers and the floor on the same lines, and the parsers on lines with
/// markers.
class ParserContest {
 public:
  /// Borrows `lines`, which have no markers.
  explicit ParserContest(const Corpus& lines);

  /// Like `Contest::run`.
  void run(int rounds) { contest.run(rounds); }
  /// Writes what everything took and how that stands to the aims.
  void write(std::ostream& out) const;

 private:
  void addPeers(const Corpus& lines);
  void addParsers(const Corpus& lines);
  void addMarked(const std::string& kind, MarkedCorpus lines);

  // A deque: subjects borrow their lines.
  std::deque<MarkedCorpus> markedLines;
  Contest contest;
};

}  // namespace bench
