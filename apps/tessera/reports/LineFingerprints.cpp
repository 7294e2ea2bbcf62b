#include "tessera/reports/LineFingerprints.hpp"

#include <charconv>
#include <iterator>

namespace tessera::reports {
namespace {

/// The hash FNV-1a with 64 bits by Fowler, Noll and Vo: the same on every machine, as a name must
/// be.
class Hash {
 public:
  void add(unsigned byte) { value = (value ^ byte) * 0x100000001B3U; }
  std::uint64_t get() const { return value; }

 private:
  std::uint64_t value = 0xCBF29CE484222325U;
};

std::u16string_view trimmed(std::u16string_view line) {
  constexpr std::u16string_view kBlanks = u" \t";
  const std::size_t begin = line.find_first_not_of(kBlanks);
  if (begin == line.npos) return {};
  return line.substr(begin, line.find_last_not_of(kBlanks) - begin + 1);
}

std::uint64_t calculateHash(std::string_view id, std::u16string_view line) {
  Hash hash;
  for (const char character : id) hash.add(static_cast<unsigned char>(character));
  hash.add(0);
  for (const char16_t unit : trimmed(line)) {
    hash.add(unit & 0xFFU);
    hash.add(static_cast<unsigned>(unit) >> 8);
  }
  return hash.get();
}

std::string hexadecimal(std::uint64_t number) {
  char digits[16];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
  const std::string text(digits, end);
  return std::string(std::size(digits) - text.size(), '0') + text;
}

}  // namespace

std::string LineFingerprints::next(std::string_view id, std::u16string_view line) {
  const std::uint64_t hash = hashOf(id, line);
  return hexadecimal(hash) + ':' + std::to_string(++counts[hash]);
}

std::uint64_t LineFingerprints::hashOf(std::string_view id, std::u16string_view line) {
  if (line.data() != latest.data() || line.size() != latest.size()) {
    hashes.clear();
    latest = line;
  }
  auto known = hashes.find(id);
  if (known == hashes.end()) known = hashes.emplace(id, calculateHash(id, line)).first;
  return known->second;
}

}  // namespace tessera::reports
