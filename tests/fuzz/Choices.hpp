#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quenlith::fuzz {

/// Takes decisions from the bytes of an input, for targets whose input is not a text. After the
/// last byte every decision is 0.
class Choices {
 public:
  explicit Choices(std::string_view bytes) noexcept : bytes(bytes) {}

  bool atEnd() const noexcept { return bytes.empty(); }

  std::uint8_t byte() noexcept {
    if (bytes.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(bytes.front());
    bytes.remove_prefix(1);
    return first;
  }

  /// Returns a number below `count`, which is from 1 to 256.
  std::size_t below(std::size_t count) noexcept { return byte() % count; }
  bool flag() noexcept { return below(2) == 1; }

  /// Returns one element of a list that is not empty.
  template <class List>
  auto& pick(List& list) noexcept {
    return list[below(list.size())];
  }

  /// Takes the bytes up to the next `end`, which is taken too; all others if there is none.
  std::string_view until(char end) noexcept {
    const std::string_view taken = bytes.substr(0, bytes.find(end));
    bytes.remove_prefix(taken.size() == bytes.size() ? taken.size() : taken.size() + 1);
    return taken;
  }

  /// Takes all bytes that are left.
  std::string_view rest() noexcept {
    const std::string_view taken = bytes;
    bytes = {};
    return taken;
  }

 private:
  std::string_view bytes;
};

}  // namespace quenlith::fuzz
