#pragma once

#include <deque>
#include <iosfwd>
#include <string>

#include "harness/Contest.hpp"
#include "harness/MarkedCorpus.hpp"

namespace bench {

/// Compares the parsers, their peers and the floor on the same lines, and the parsers on lines with
/// markers.
class ParserContest {
 public:
  /// Borrows `lines`, which have no markers. Only the subject `onlySubject` takes part, or all if
  /// it is empty.
  ParserContest(const Corpus& lines, const std::string& onlySubject);

  /// Like `Contest::run`.
  void run(int rounds) { contest.run(rounds); }
  /// Like `Contest::count`.
  void count() { contest.count(); }
  /// Writes what was measured, and which aims it meets.
  void write(std::ostream& out) const;

 private:
  void addPeers(const Corpus& lines);
  void addParsers(const Corpus& lines);
  /// Every `stride`th line, every `every`th of these with `markersALine` markers.
  struct Marking {
    std::size_t stride;
    std::size_t every;
    std::size_t markersALine;
  };
  void addMarked(const std::string& kind, const Corpus& lines, const Marking& marking);

  // A deque: subjects borrow their lines.
  std::deque<MarkedCorpus> markedLines;
  Contest contest;
};

}  // namespace bench
