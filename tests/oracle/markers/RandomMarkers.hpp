#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace quenlith::oracle {

/// Makes random texts of whole and damaged markers, of one or several lines.
class RandomMarkers {
 public:
  explicit RandomMarkers(std::uint64_t seed) : random(seed) {}

  std::u16string text();

 private:
  std::size_t below(std::size_t limit) { return random() % limit; }
  bool oneIn(std::size_t limit) { return below(limit) == 0; }
  template <typename List>
  std::u16string pick(const List& list);

  std::u16string marker();
  std::u16string body();
  std::u16string inLineComment();
  std::u16string inBlockComment();
  std::u16string run(char16_t unit);
  std::u16string blanks();
  std::u16string id();
  std::u16string range();
  std::u16string object(int depth);
  std::u16string array(int depth);
  std::u16string value(int depth);
  std::u16string string();
  std::u16string number();
  std::u16string nested();
  void damage(std::u16string& text);

  std::mt19937_64 random;
};

}  // namespace quenlith::oracle
