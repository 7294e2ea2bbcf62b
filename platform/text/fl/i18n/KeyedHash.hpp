#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quenlith/export/text.hpp"

namespace fl::i18n {

/// Computes SipHash-1-3 (J.-P. Aumasson and D. J. Bernstein, "SipHash: a fast short-input PRF",
/// 2012) of a sequence of 64-bit words.
///
/// For hash tables whose keys come from files: nobody who does not know the key can choose keys
/// with equal hashes.
class QUENLITH_TEXT_EXPORT KeyedHash {
 public:
  using Key = std::array<std::uint64_t, 2>;

  explicit KeyedHash(const Key& key) noexcept;

  /// Returns the key of this process, which is drawn on the first call. Throws what
  /// std::random_device throws; the next call tries again.
  static const Key& keyOfProcess();

  void add(std::uint64_t word) noexcept;
  /// Adds the length and the bytes of `bytes`, padded with zeros to a whole word.
  void add(std::string_view bytes) noexcept;
  /// Adds the length and the code units of `units`, padded with zeros to a whole word.
  void add(std::u16string_view units) noexcept;

  /// Returns the hash of what was added. The last step.
  std::uint64_t finish() noexcept;

 private:
  void addBytes(const void* begin, std::size_t sizeBytes) noexcept;
  void round() noexcept;

  std::array<std::uint64_t, 4> state;
  std::uint64_t words = 0;
};

}  // namespace fl::i18n
