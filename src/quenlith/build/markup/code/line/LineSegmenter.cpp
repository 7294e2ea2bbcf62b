#include "quenlith/build/markup/code/line/LineSegmenter.hpp"

#include <algorithm>
#include <numeric>
#include <queue>
#include <range/v3/view/chunk_by.hpp>
#include <range/v3/view/filter.hpp>
#include <span>
#include <vector>

namespace quenlith::build::markup::code::line {

using core::MarkerInfo;

void LineSegmenter::assign(std::size_t begin, std::size_t end, const MarkerInfo& owner) {
  add(begin, end, owner, false);
}

void LineSegmenter::exclude(const MarkerInfo& marker) {
  add(marker.position, marker.position + marker.length, marker, true);
}

void LineSegmenter::add(std::size_t begin, std::size_t end, const MarkerInfo& marker,
                        bool isMarkerText) {
  if (!spans.empty() && begin < spans.back().end) ascending = false;
  spans.emplace_back(begin, end, &marker, isMarkerText);
}

/// Sweeps a line from left to right and yields runs, in each of which one span counts.
class LineSegmenter::Sweep {
 public:
  Sweep(std::span<const Run> spans, std::size_t lineLength)
      : spans(spans), lineLength(lineLength), byBegin(spans.size()) {
    std::iota(byBegin.begin(), byBegin.end(), std::size_t{0});
    std::sort(byBegin.begin(), byBegin.end(),
              [spans](std::size_t a, std::size_t b) { return spans[a].begin < spans[b].begin; });
  }

  bool atEnd() const noexcept { return position == lineLength; }

  /// Returns the run that begins at the current position and moves to its end.
  Run next() {
    openAndClose();
    const std::size_t nextBegin =
        opened == byBegin.size() ? lineLength : spans[byBegin[opened]].begin;
    Run run{position, nextBegin, nullptr, false};
    if (!open.empty()) {
      const Run& counting = spans[open.top()];
      run = {position, std::min(nextBegin, counting.end), counting.owner, counting.isMarkerText};
    }
    position = run.end;
    return run;
  }

 private:
  void openAndClose() {
    while (opened < byBegin.size() && spans[byBegin[opened]].begin <= position) {
      open.push(byBegin[opened++]);
    }
    while (!open.empty() && spans[open.top()].end <= position) open.pop();
  }

  std::span<const Run> spans;
  std::size_t lineLength;
  std::vector<std::size_t> byBegin;
  std::size_t opened = 0;
  std::size_t position = 0;
  // The span given last is on top. A span that ended below it is removed once it is on top.
  std::priority_queue<std::size_t> open;
};

LineSegmenter::Runs LineSegmenter::runs(std::size_t lineLength) const {
  Runs found;
  found.reserve(2 * spans.size() + 1);
  if (ascending) {
    fillGaps(lineLength, found);
  } else {
    Sweep sweep({spans.data(), spans.size()}, lineLength);
    while (!sweep.atEnd()) found.push_back(sweep.next());
  }
  return found;
}

void LineSegmenter::fillGaps(std::size_t lineLength, Runs& found) const {
  std::size_t position = 0;
  for (const Run& span : spans) {
    if (position < span.begin) found.emplace_back(position, span.begin, nullptr, false);
    found.push_back(span);
    position = span.end;
  }
  if (position < lineLength) found.emplace_back(position, lineLength, nullptr, false);
}

LineSegmenter::Segments LineSegmenter::split(std::u16string_view line) {
  namespace views = ranges::views;
  const Runs found = runs(line.size());
  // A span and not the vector: its views read the bounds once.
  const std::span<const Run> all(found.data(), found.size());
  const auto isText = [](const Run& run) { return !run.isMarkerText; };
  const auto sameOwner = [](const Run& a, const Run& b) { return a.owner == b.owner; };

  Segments segments;
  joined.clear();
  for (auto&& group : all | views::filter(isText) | views::chunk_by(sameOwner)) {
    join(line, group, segments.emplace_back());
  }
  return segments;
}

template <class Group>
void LineSegmenter::join(std::u16string_view line, Group& group, LineSegment& segment) {
  const auto textOf = [line](const Run& run) {
    return line.substr(run.begin, run.end - run.begin);
  };
  auto run = ranges::begin(group);
  segment.owner = (*run).owner;
  segment.text = textOf(*run);
  if (++run == ranges::end(group)) return;

  // All joined texts together are not longer than the line, so they never move.
  joined.reserve(line.size());
  const std::size_t start = joined.size();
  joined.append(segment.text);
  for (; run != ranges::end(group); ++run) joined.append(textOf(*run));
  segment.text = std::u16string_view(joined).substr(start);
}

}  // namespace quenlith::build::markup::code::line
