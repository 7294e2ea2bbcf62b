#include "tessera/spelling/areSimilar.hpp"

#include <algorithm>
#include <utility>

namespace tessera::spelling {
namespace {

/// Returns the number of units at the start of both that are equal.
std::size_t commonStart(std::u16string_view a, std::u16string_view b) {
  return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

bool isOneEditApart(std::u16string_view a, std::u16string_view b) {
  if (a.size() > b.size()) std::swap(a, b);
  const std::size_t start = commonStart(a, b);
  a.remove_prefix(start);
  b.remove_prefix(start);
  if (a.size() + 1 == b.size()) return a == b.substr(1);
  if (a.size() != b.size() || a.empty()) return false;
  if (a.substr(1) == b.substr(1)) return true;
  return a.size() > 1 && a[0] == b[1] && a[1] == b[0] && a.substr(2) == b.substr(2);
}

}  // namespace

std::u16string lowered(std::u16string_view name) {
  std::u16string lower(name);
  for (char16_t& unit : lower) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 0x20);
  }
  return lower;
}

bool areSimilar(std::u16string_view a, std::u16string_view b) {
  if (a == b || a.empty() || b.empty()) return false;
  const std::u16string lowerA = lowered(a);
  const std::u16string lowerB = lowered(b);
  if (lowerA == lowerB) return true;
  return lowerA.size() <= kMaxNameUnits && isOneEditApart(lowerA, lowerB);
}

}  // namespace tessera::spelling
