#pragma once

#include <cstddef>

#include "oracle/support/RunSettings.hpp"
#include "oracle/support/Tally.hpp"

namespace quenlith::oracle {

/// The cells of the decision matrix of the task parser's `parse`. Idle: no line is counted.
/// Paired and unpaired lines have a kind of 0 or 1, others one above 1.
enum class TaskRow : std::size_t {
  kIdlePlain,
  kIdleUnpaired,
  kIdlePairedOne,
  kIdlePairedUnequal,
  kIdlePairedEqualAfterText,
  kIdlePairedEqualAtStart,
  kIdleSameIdOne,
  kIdleSameIdUnequal,
  kIdleSameIdEqualAfterText,
  kIdleSameIdEqualAtStart,
  kIdleSameIdBothEmpty,
  kIdleSameIdLeftOver,
  kIdleOtherIdOne,
  kIdleOtherIdUnequal,
  kIdleOtherIdEqualAfterText,
  kIdleOtherIdEqualAtStart,
  kIdleThreeEqual,
  kOpenPlain,
  kOpenPlainWraps,
  kOpenUnpaired,
  kOpenPairedSameId,
  kOpenPairedOtherId,
  kOpenSameId,
  kOpenOtherId,
  kOpenOtherIdWraps,
  kOpenMarkerAtStart,
  kOpenTwoEqual,
  kCloseWithCountZeroAfterWrap,
  kCloseOfHeader,
  kCloseOfHeaderClosedBefore,
  kCloseOfNonHeaderWithTask,
  kCloseWithoutNode,
  kCloseOfNodeWithoutChild,
  kCloseOfOtherNode,
  kHeaderAnchor,
  kHeaderAnchorEmpty,
  kLineDisagrees,
  kUnpairedByOverlap,
  kCount
};

/// Adds a row for each cell, in the order of the enumeration, with its minimum in such a run.
void addTaskRows(const RunSettings& settings, Tally& tally);

}  // namespace quenlith::oracle
