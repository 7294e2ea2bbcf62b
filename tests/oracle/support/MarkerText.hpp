#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "oracle/support/Random.hpp"

namespace quenlith::oracle {

/// One half of a range whose digits are written later, when the places of all markers are
/// known: `width` digits at `offset`.
struct DigitHole {
  std::size_t offset = 0;
  std::size_t width = 0;
};

/// The two numbers of a range that is still to be chosen.
struct RangeHole {
  DigitHole begin;
  DigitHole end;
};

/// Text with holes in it for ranges.
struct DraftText {
  std::u16string text;
  std::vector<RangeHole> holes;

  void append(const DraftText& other);
};

/// Returns a marker in some spelling: any leader, element, type, id, with or without a range
/// (a hole, or one that nothing will make valid) and data.
DraftText randomMarker(Random& random);

/// Returns a text that looks like a marker and is none, or is one only after "%%\" was undone,
/// or only before.
DraftText randomDamagedMarker(Random& random);

/// Returns some text without "<@": words, blanks, leaders, "%%\", characters beyond ASCII and
/// beyond the first plane, unpaired surrogates.
std::u16string randomPlainText(Random& random, std::size_t words);

}  // namespace quenlith::oracle
