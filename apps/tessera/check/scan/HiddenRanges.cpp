#include "tessera/check/scan/HiddenRanges.hpp"

#include <algorithm>
#include <map>
#include <optional>

namespace tessera::check::scan {
namespace {

/// The text that the ranges of later markers cover, as disjoint intervals.
class Cover {
 public:
  /// Returns how the cover hides the range of `marker`, if it does.
  std::optional<HiddenRange> hide(const FoundMarker& marker) const {
    const auto [begin, end] = *marker.range;
    if (const auto* first = intervalAt(begin)) {
      if (end <= first->end) return HiddenRange{&marker, first->later, true, begin, end};
      if (first->begin < begin) return HiddenRange{&marker, first->later, false, begin, first->end};
    }
    const auto* last = intervalAt(end - 1);
    if (last == nullptr || last->end <= end) return std::nullopt;
    return HiddenRange{&marker, last->later, false, last->begin, end};
  }

  void add(const FoundMarker& marker) {
    Interval added{marker.range->first, marker.range->second, &marker};
    auto next = byBegin.upper_bound(added.begin);
    if (next != byBegin.begin() && std::prev(next)->second.end >= added.begin) --next;
    while (next != byBegin.end() && next->second.begin <= added.end) {
      added.begin = std::min(added.begin, next->second.begin);
      added.end = std::max(added.end, next->second.end);
      next = byBegin.erase(next);
    }
    byBegin.emplace(added.begin, added);
  }

 private:
  struct Interval {
    std::uint64_t begin;
    std::uint64_t end;
    /// One of the markers that cover it.
    const FoundMarker* later;
  };

  const Interval* intervalAt(std::uint64_t position) const {
    const auto next = byBegin.upper_bound(position);
    if (next == byBegin.begin()) return nullptr;
    const Interval& interval = std::prev(next)->second;
    return position < interval.end ? &interval : nullptr;
  }

  std::map<std::uint64_t, Interval> byBegin;
};

}  // namespace

std::vector<HiddenRange> findHiddenRanges(const std::vector<const FoundMarker*>& markers) {
  std::vector<HiddenRange> hidden;
  if (markers.size() < 2) return hidden;
  Cover cover;
  for (auto marker = markers.rbegin(); marker != markers.rend(); ++marker) {
    if (const auto found = cover.hide(**marker)) hidden.push_back(*found);
    cover.add(**marker);
  }
  return hidden;
}

}  // namespace tessera::check::scan
