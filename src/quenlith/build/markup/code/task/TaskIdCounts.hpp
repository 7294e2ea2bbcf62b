#pragma once

#include <cstddef>
#include <unordered_map>

#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code::task {

/// Counts the task markers of each id in blocks of text. Each block is scanned once, as long as
/// it is not forgotten; blocks are told apart by their content.
class TaskIdCounts {
 public:
  /// Returns the number of task markers with `id` in `block`. One comparison of the block when
  /// it is the one of the call before, a hash of it more when it was seen before that, else one
  /// scan. When memory runs out, it is as if the call had not been made.
  std::size_t count(const fl::i18n::ustring& block, const fl::i18n::ustring& id);

  /// Forgets all blocks.
  void clear() noexcept;

 private:
  using Counts = std::unordered_map<fl::i18n::ustring, std::size_t>;
  using Blocks = std::unordered_map<fl::i18n::ustring, Counts>;

  static Counts countIn(const fl::i18n::ustring& block);

  Blocks blocks;
  // The block of the call before; null when there was none.
  const Blocks::value_type* latest = nullptr;
};

}  // namespace quenlith::build::markup::code::task
