#include "fl/i18n/KeyedHash.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>

namespace fl::i18n {

namespace {

KeyedHash::Key drawKey() {
  std::random_device source;
  const auto word = [&source] { return std::uint64_t{source()} << 32 | source(); };
  const std::uint64_t first = word();
  return {first, word()};
}

}  // namespace

const KeyedHash::Key& KeyedHash::keyOfProcess() {
  static const Key key = drawKey();
  return key;
}

KeyedHash::KeyedHash(const Key& key) noexcept
    : state{key[0] ^ 0x736f6d6570736575U, key[1] ^ 0x646f72616e646f6dU,
            key[0] ^ 0x6c7967656e657261U, key[1] ^ 0x7465646279746573U} {}

void KeyedHash::add(std::uint64_t word) noexcept {
  state[3] ^= word;
  round();
  state[0] ^= word;
  ++words;
}

void KeyedHash::add(std::string_view bytes) noexcept {
  add(std::uint64_t{bytes.size()});
  addBytes(bytes.data(), bytes.size());
}

void KeyedHash::add(std::u16string_view units) noexcept {
  add(std::uint64_t{units.size()});
  addBytes(units.data(), units.size() * sizeof(char16_t));
}

void KeyedHash::addBytes(const void* begin, std::size_t sizeBytes) noexcept {
  const auto* bytes = static_cast<const std::byte*>(begin);
  for (std::size_t at = 0; at < sizeBytes; at += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes + at, std::min(sizeof(word), sizeBytes - at));
    add(word);
  }
}

std::uint64_t KeyedHash::finish() noexcept {
  // The last word has the length in bytes, modulo 256, in its highest byte.
  constexpr int kHighestByte = 56;
  add((words * sizeof(std::uint64_t)) << kHighestByte);
  state[2] ^= 0xff;
  for (int i = 0; i < 3; ++i) round();
  return state[0] ^ state[1] ^ state[2] ^ state[3];
}

void KeyedHash::round() noexcept {
  auto& [v0, v1, v2, v3] = state;
  v0 += v1;
  v1 = std::rotl(v1, 13) ^ v0;
  v0 = std::rotl(v0, 32);
  v2 += v3;
  v3 = std::rotl(v3, 16) ^ v2;
  v0 += v3;
  v3 = std::rotl(v3, 21) ^ v0;
  v2 += v1;
  v1 = std::rotl(v1, 17) ^ v2;
  v2 = std::rotl(v2, 32);
}

}  // namespace fl::i18n
