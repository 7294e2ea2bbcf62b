#include "tessera/hashing/KeyedMap.hpp"

#include "fl/i18n/KeyedHash.hpp"

namespace tessera::hashing {

using fl::i18n::KeyedHash;

std::size_t KeyedHasher::operator()(std::u16string_view text) const {
  KeyedHash hash(KeyedHash::keyOfProcess());
  hash.add(text);
  return static_cast<std::size_t>(hash.finish());
}

std::size_t KeyedHasher::operator()(
    const std::pair<std::u16string_view, std::u16string_view>& texts) const {
  KeyedHash hash(KeyedHash::keyOfProcess());
  hash.add(texts.first);
  hash.add(texts.second);
  return static_cast<std::size_t>(hash.finish());
}

std::size_t KeyedHasher::operator()(std::uint64_t number) const {
  KeyedHash hash(KeyedHash::keyOfProcess());
  hash.add(number);
  return static_cast<std::size_t>(hash.finish());
}

}  // namespace tessera::hashing
