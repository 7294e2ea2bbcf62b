#pragma once

#include <cstddef>

#include "harness/Corpus.hpp"

namespace bench {

/// Lines with markers, and the expected result of a parse with the default code element parser
/// only.
struct MarkedCorpus {
  /// Takes every line of `lines` whose number is a multiple of `stride`, and gives every
  /// `every`th of them `markersALine` markers.
  ///
  /// The markers are, in turn: an output with a range and data, which removes up to 16 units of the
  /// line; a control with data, which stays in the text; an anchor with data.
  static MarkedCorpus make(const Corpus& lines, std::size_t stride, std::size_t every,
                           std::size_t markersALine);

  Corpus corpus;
  /// 16-bit code units in the text nodes.
  std::size_t textUnits = 0;
  /// Line nodes with an anchor id.
  std::size_t anchors = 0;
};

}  // namespace bench
