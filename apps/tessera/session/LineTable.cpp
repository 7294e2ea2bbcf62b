#include "tessera/session/LineTable.hpp"

#include <utility>

namespace tessera::session {

bool areAlike(const LineOutcome& a, const LineOutcome& b) noexcept {
  return a.parser == b.parser && a.nodeCount == b.nodeCount && a.result.type == b.result.type &&
         a.result.flag == b.result.flag && a.result.markerTypes == b.result.markerTypes &&
         a.log == b.log;
}

void LineTable::add(LineOutcome&& outcome) {
  ++count;
  if (!runs.empty()) {
    Run& last = runs.back();
    const std::uint64_t nextNode = last.first.firstNode + last.lines * last.first.nodeCount;
    if (outcome.firstNode == nextNode && areAlike(outcome, last.first)) {
      ++last.lines;
      return;
    }
  }
  runs.push_back({std::move(outcome), 1});
}

bool LineTable::Cursor::advance() noexcept {
  // The first call moves to the first line.
  if (number != 0) ++inRun;
  if (run < table.runs.size() && inRun == table.runs[run].lines) {
    ++run;
    inRun = 0;
  }
  ++number;
  return run < table.runs.size();
}

LineTable::Line LineTable::Cursor::line() const noexcept {
  const Run& current = table.runs[run];
  return {number, current.first.firstNode + inRun * current.first.nodeCount, current.first};
}

}  // namespace tessera::session
