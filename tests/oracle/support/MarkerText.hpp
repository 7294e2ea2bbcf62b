#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "oracle/support/Random.hpp"

namespace quenlith::oracle {

/// One half of a range whose digits are written later, when the positions of all markers are
/// known: `width` digits at `offset`.
struct DigitHole {
  std::size_t offset = 0;
  std::size_t width = 0;
};

/// The two numbers of a range that is not chosen yet.
struct RangeHole {
  DigitHole begin;
  DigitHole end;
};

/// Text with holes for ranges.
struct DraftText {
  std::u16string text;
  std::vector<RangeHole> holes;

  void append(const DraftText& other);
};

/// Returns a marker in some spelling: any leader, element, type, id, with or without a range
/// (a hole, or one that nothing will make valid) and data.
DraftText randomMarker(Random& random);

/// Returns a text that looks like a marker but is not, or is one only before or only after "%%\" is
/// replaced.
DraftText randomDamagedMarker(Random& random);

/// Returns `words` pieces of plain text: words, blanks, leaders, "%%\", characters outside ASCII
/// and outside the Basic Multilingual Plane, sometimes with unpaired surrogates.
std::u16string randomPlainText(Random& random, std::size_t words);

}  // namespace quenlith::oracle
