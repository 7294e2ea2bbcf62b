#include "quenlith/build/markup/code/LineCut.hpp"

#include <algorithm>
#include <numeric>
#include <queue>
#include <range/v3/view/chunk_by.hpp>
#include <range/v3/view/filter.hpp>
#include <span>
#include <vector>

namespace quenlith::build::markup::code {

using core::MarkerInfo;

void LineCut::own(std::size_t begin, std::size_t end, const MarkerInfo& owner) {
  add(begin, end, owner, false);
}

void LineCut::leaveOut(const MarkerInfo& marker) {
  add(marker.position, marker.position + marker.length, marker, true);
}

void LineCut::add(std::size_t begin, std::size_t end, const MarkerInfo& marker, bool isMarkerText) {
  if (!stretches.empty() && begin < stretches.back().end) ascending = false;
  stretches.emplace_back(begin, end, &marker, isMarkerText);
}

/// Goes through a line from left to right and tells at each place which stretch counts.
class LineCut::Sweep {
 public:
  Sweep(std::span<const Run> allStretches, std::size_t length)
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

  std::span<const Run> stretches;
  std::size_t lineLength;
  std::vector<std::size_t> byBegin;
  std::size_t opened = 0;
  std::size_t position = 0;
  // The stretch given last is on top. One that ended below it is dropped when it comes up.
  std::priority_queue<std::size_t> open;
};

LineCut::Runs LineCut::runs(std::size_t lineLength) const {
  Runs found;
  found.reserve(2 * stretches.size() + 1);
  if (ascending) {
    fillGaps(lineLength, found);
  } else {
    Sweep sweep({stretches.data(), stretches.size()}, lineLength);
    while (!sweep.atEnd()) found.push_back(sweep.next());
  }
  return found;
}

void LineCut::fillGaps(std::size_t lineLength, Runs& found) const {
  std::size_t position = 0;
  for (const Run& stretch : stretches) {
    if (position < stretch.begin) found.emplace_back(position, stretch.begin, nullptr, false);
    found.push_back(stretch);
    position = stretch.end;
  }
  if (position < lineLength) found.emplace_back(position, lineLength, nullptr, false);
}

LineCut::Pieces LineCut::cut(std::u16string_view line) {
  namespace views = ranges::views;
  const Runs all = runs(line.size());
  const auto isText = [](const Run& run) { return !run.isMarkerText; };
  const auto sameOwner = [](const Run& a, const Run& b) { return a.owner == b.owner; };

  Pieces pieces;
  joined.clear();
  for (auto&& group : all | views::filter(isText) | views::chunk_by(sameOwner)) {
    join(line, group, pieces.emplace_back());
  }
  return pieces;
}

template <class Group>
void LineCut::join(std::u16string_view line, Group& group, LinePiece& piece) {
  const auto textOf = [line](const Run& run) {
    return line.substr(run.begin, run.end - run.begin);
  };
  auto run = ranges::begin(group);
  piece.owner = (*run).owner;
  piece.text = textOf(*run);
  if (++run == ranges::end(group)) return;

  // All joined texts together are no longer than the line: what is there does not move.
  joined.reserve(line.size());
  const std::size_t start = joined.size();
  joined.append(piece.text);
  for (; run != ranges::end(group); ++run) joined.append(textOf(*run));
  piece.text = std::u16string_view(joined).substr(start);
}

}  // namespace quenlith::build::markup::code
