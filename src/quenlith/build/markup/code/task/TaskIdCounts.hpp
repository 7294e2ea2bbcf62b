#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "fl/i18n/ustring.hpp"

namespace quenlith::build::markup::code::task {

/// Counts the task markers of each id in a block of text. Caches the counts of the last block.
class TaskIdCounts {
 public:
  /// Returns the number of task markers in `block` that have `id`.
  ///
  /// Scans the block unless it is the cached one. A `version` other than 0 that is equal to the
  /// version of the call before says that it is, and the text is then not read; otherwise the text
  /// is compared. When memory runs out, the cache is unchanged.
  std::size_t count(const fl::i18n::ustring& block, std::uint64_t version,
                    const fl::i18n::ustring& id);

  /// Empties the cache.
  void clear() noexcept;

 private:
  /// Orders ids by their length and bytes. Any order will do, and the alphabetical one compares
  /// 16-bit strings unit by unit.
  struct Order {
    bool operator()(const fl::i18n::ustring& a, const fl::i18n::ustring& b) const noexcept;
  };

  // Ordered: authors choose the ids, and chosen collisions would make a hash table quadratic.
  using Counts = std::map<fl::i18n::ustring, std::size_t, Order>;

  void scan(const fl::i18n::ustring& block);

  fl::i18n::ustring scannedBlock;
  std::uint64_t scannedVersion = 0;
  Counts counts;
};

}  // namespace quenlith::build::markup::code::task
