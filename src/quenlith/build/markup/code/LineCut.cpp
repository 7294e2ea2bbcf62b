#include "quenlith/build/markup/code/LineCut.hpp"

#include <algorithm>
#include <numeric>
#include <queue>
#include <range/v3/range/conversion.hpp>
#include <range/v3/view/chunk_by.hpp>
#include <range/v3/view/filter.hpp>
#include <range/v3/view/transform.hpp>

namespace quenlith::build::markup::code {

using core::MarkerInfo;

void LineCut::own(std::size_t begin, std::size_t end, const MarkerInfo& owner) {
  add({begin, end, &owner, false});
}

void LineCut::leaveOut(const MarkerInfo& marker) {
  add({marker.position, marker.position + marker.length, &marker, true});
}

void LineCut::add(const Run& stretch) {
  if (!stretches.empty() && stretch.begin < stretches.back().end) ascending = false;
  stretches.push_back(stretch);
}

/// Goes through a line from left to right and tells at each place which stretch counts.
class LineCut::Sweep {
 public:
  Sweep(const std::vector<Run>& allStretches, std::size_t length)
      : stretches(allStretches), lineLength(length), byBegin(allStretches.size()) {
    std::iota(byBegin.begin(), byBegin.end(), std::size_t{0});
    std::sort(byBegin.begin(), byBegin.end(), [this](std::size_t a, std::size_t b) {
      return stretches[a].begin < stretches[b].begin;
    });
  }

  bool atEnd() const noexcept { return position == lineLength; }

  /// Returns the run that begins here and moves behind it.
  Run next() {
    openAndClose();
    const std::size_t nextBegin =
        opened == byBegin.size() ? lineLength : stretches[byBegin[opened]].begin;
    Run run{position, nextBegin, nullptr, false};
    if (!open.empty()) {
      const Run& counting = stretches[open.top()];
      run = {position, std::min(nextBegin, counting.end), counting.owner, counting.isMarkerText};
    }
    position = run.end;
    return run;
  }

 private:
  void openAndClose() {
    while (opened < byBegin.size() && stretches[byBegin[opened]].begin <= position) {
      open.push(byBegin[opened++]);
    }
    while (!open.empty() && stretches[open.top()].end <= position) open.pop();
  }

  const std::vector<Run>& stretches;
  std::size_t lineLength;
  std::vector<std::size_t> byBegin;
  std::size_t opened = 0;
  std::size_t position = 0;
  // The stretch given last is on top. One that ended below it is dropped when it comes up.
  std::priority_queue<std::size_t> open;
};

std::vector<LineCut::Run> LineCut::runs(std::size_t lineLength) const {
  std::vector<Run> found;
  found.reserve(2 * stretches.size() + 1);
  if (ascending) {
    fillGaps(lineLength, found);
  } else {
    Sweep sweep(stretches, lineLength);
    while (!sweep.atEnd()) found.push_back(sweep.next());
  }
  return found;
}

void LineCut::fillGaps(std::size_t lineLength, std::vector<Run>& found) const {
  std::size_t position = 0;
  for (const Run& stretch : stretches) {
    if (position < stretch.begin) found.push_back({position, stretch.begin, nullptr, false});
    found.push_back(stretch);
    position = stretch.end;
  }
  if (position < lineLength) found.push_back({position, lineLength, nullptr, false});
}

std::vector<LinePiece> LineCut::cut(std::u16string_view line) const {
  namespace views = ranges::views;
  const std::vector<Run> all = runs(line.size());
  const auto isText = [](const Run& run) { return !run.isMarkerText; };
  const auto sameOwner = [](const Run& a, const Run& b) { return a.owner == b.owner; };
  const auto join = [line](auto&& group) {
    LinePiece piece{{}, ranges::begin(group)->owner};
    for (const Run& run : group) piece.text.append(line, run.begin, run.end - run.begin);
    return piece;
  };
  return all | views::filter(isText) | views::chunk_by(sameOwner) | views::transform(join) |
         ranges::to<std::vector>();
}

}  // namespace quenlith::build::markup::code
