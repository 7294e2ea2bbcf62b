#include "tessera/check/scan/KeyedMap.hpp"

#include "fl/i18n/KeyedHash.hpp"

namespace tessera::check::scan {

using fl::i18n::KeyedHash;

std::size_t KeyedHasher::operator()(std::u16string_view text) const {
  KeyedHash hash(KeyedHash::keyOfProcess());
  hash.add(text);
  return static_cast<std::size_t>(hash.finish());
}

std::size_t KeyedHasher::operator()(std::uint64_t number) const {
  KeyedHash hash(KeyedHash::keyOfProcess());
  hash.add(number);
  return static_cast<std::size_t>(hash.finish());
}

}  // namespace tessera::check::scan
