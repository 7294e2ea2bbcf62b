#include "oracle/support/randomLine.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "oracle/support/normalise.hpp"
#include "oracle/support/scanLiterally.hpp"

namespace quenlith::oracle {

namespace {

using Span = std::pair<std::size_t, std::size_t>;

/// Chooses ranges for one line. It knows the positions of the markers, the text between them and
/// the ranges chosen so far.
class RangeChooser {
 public:
  RangeChooser(const std::u16string& draftText, Random& randomNumbers) : random(randomNumbers) {
    const auto line = normalise(draftText);
    length = line.size();
    std::size_t begin = 0;
    for (const auto& info : scanLiterally(line)) {
      markers.emplace_back(info.position, info.position + info.length);
      addGap(begin, info.position);
      begin = info.position + info.length + 1;
    }
    addGap(begin, length);
  }

  Span choose() {
    const std::size_t wish = random.below(100);
    if (wish < 44) return valid();
    if (wish < 58) return insideEarlier();
    if (wish < 66) return pastEarlier();
    if (wish < 72) return backwards();
    if (wish < 78) return {random.below(length + 1), length + 1 + random.below(9)};
    if (wish < 86) return beginningInMarker();
    if (wish < 93) return endingInMarker();
    return enclosingMarker();
  }

 private:
  void addGap(std::size_t begin, std::size_t end) {
    if (begin < end) gaps.emplace_back(begin, end);
  }
  Span anything() { return {random.below(length + 2), random.below(length + 2)}; }
  Span within(Span outer) {
    const std::size_t begin = random.between(outer.first, outer.second - 1);
    return {begin, random.between(begin + 1, outer.second)};
  }
  Span valid() {
    if (gaps.empty()) return anything();
    const Span gap = random.pick(gaps);
    chosen.push_back(random.oneIn(8) ? gap : within(gap));
    return chosen.back();
  }
  Span insideEarlier() { return chosen.empty() ? valid() : within(random.pick(chosen)); }
  // Begins inside an earlier range or where it ends, and ends after it if there is space.
  Span pastEarlier() {
    if (chosen.empty()) return valid();
    const Span earlier = random.pick(chosen);
    const std::size_t begin = random.between(earlier.first, earlier.second);
    for (const Span& gap : gaps) {
      const bool containsIt = gap.first <= earlier.first && earlier.second < gap.second;
      if (containsIt) return {begin, random.between(earlier.second + 1, gap.second)};
    }
    return {begin, begin + 1 + random.below(6)};
  }
  Span backwards() {
    const Span span = anything();
    return {std::max(span.first, span.second), std::min(span.first, span.second)};
  }
  Span beginningInMarker() {
    if (markers.empty()) return anything();
    const Span marker = random.pick(markers);
    const std::size_t begin =
        random.oneIn(3) ? marker.second : random.between(marker.first, marker.second);
    return {begin, std::min(begin + 1 + random.below(5), std::max(length, begin + 1))};
  }
  Span endingInMarker() {
    if (markers.empty()) return anything();
    const Span marker = random.pick(markers);
    const std::size_t begin = marker.first - std::min(marker.first, 1 + random.below(4));
    return {begin, random.between(marker.first, marker.second)};
  }
  Span enclosingMarker() {
    if (markers.empty()) return anything();
    const Span marker = random.pick(markers);
    const std::size_t begin = marker.first - std::min(marker.first, 1 + random.below(3));
    return {begin, std::min(length, marker.second + 1 + random.below(3))};
  }

  Random& random;
  std::size_t length = 0;
  std::vector<Span> markers;
  std::vector<Span> gaps;
  std::vector<Span> chosen;
};

void writeDigits(std::u16string& text, const DigitHole& hole, std::size_t number) {
  for (std::size_t i = hole.width; i > 0; --i) {
    text[hole.offset + i - 1] = static_cast<char16_t>(u'0' + number % 10);
    number /= 10;
  }
}

DraftText randomDraft(Random& random) {
  DraftText draft;
  const std::size_t parts = random.oneIn(400) ? random.between(20, 60) : random.between(1, 5);
  for (std::size_t i = 0; i < parts; ++i) {
    if (!random.oneIn(4)) draft.text += randomPlainText(random, random.between(1, 6));
    if (random.oneIn(3)) {
      draft.append(randomDamagedMarker(random));
    } else if (!random.oneIn(5)) {
      draft.append(randomMarker(random));
    }
  }
  if (!random.oneIn(3)) draft.text += randomPlainText(random, random.between(1, 4));
  return draft;
}

DraftText onlyMarkers(Random& random) {
  DraftText draft;
  const std::size_t count = random.between(1, 3);
  for (std::size_t i = 0; i < count; ++i) draft.append(randomMarker(random));
  return draft;
}

// Appends the same marker twice: equal markers are still two markers.
void repeatOnePart(DraftText& draft, Random& random) {
  DraftText marker = randomMarker(random);
  // With a range chosen for the marker alone, both copies have the same, usually invalid, range.
  if (random.oneIn(3)) marker = {fillRanges(marker, random), {}};
  draft.append(marker);
  draft.text += randomPlainText(random, 1);
  draft.append(marker);
}

}  // namespace

std::u16string fillRanges(const DraftText& draft, Random& random) {
  std::u16string text = draft.text;
  RangeChooser chooser(text, random);
  for (const RangeHole& hole : draft.holes) {
    const Span range = chooser.choose();
    writeDigits(text, hole.begin, range.first);
    writeDigits(text, hole.end, range.second);
  }
  return text;
}

std::u16string randomLine(Random& random) {
  if (random.oneIn(100)) return {};
  if (random.oneIn(12)) return randomPlainText(random, random.between(1, 12));
  DraftText draft = random.oneIn(30) ? onlyMarkers(random) : randomDraft(random);
  if (random.oneIn(6)) repeatOnePart(draft, random);
  return fillRanges(draft, random);
}

}  // namespace quenlith::oracle
