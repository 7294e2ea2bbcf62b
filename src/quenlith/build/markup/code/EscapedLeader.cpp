#include "quenlith/build/markup/code/EscapedLeader.hpp"

#include <boost/algorithm/string/replace.hpp>
#include <cstddef>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quenlith::build::markup::code {

namespace {

constexpr std::u16string_view kEscapedLeader = u"%%\\";

/// Returns the number of units at the start of `line` that hold no backslash for certain. Few
/// lines hold one, so that most are passed eight units at a time.
std::size_t unitsWithoutBackslash([[maybe_unused]] std::u16string_view line) noexcept {
  std::size_t passed = 0;
#ifdef __SSE2__
  constexpr std::size_t kBlock = 8;
  const __m128i backslash = _mm_set1_epi16(u'\\');
  for (; line.size() - passed >= kBlock; passed += kBlock) {
    const auto* block = reinterpret_cast<const __m128i*>(line.data() + passed);
    const __m128i equal = _mm_cmpeq_epi16(_mm_loadu_si128(block), backslash);
    if (_mm_movemask_epi8(equal) != 0) break;
  }
#endif
  return passed;
}

}  // namespace

bool hasEscapedLeader(std::u16string_view line) noexcept {
  const std::size_t passed = unitsWithoutBackslash(line);
  const std::size_t leader = kEscapedLeader.size() - 1;
  return line.find(kEscapedLeader, passed < leader ? 0 : passed - leader) != line.npos;
}

fl::i18n::ustring withoutEscapes(const fl::i18n::ustring& line) {
  return boost::algorithm::replace_all_copy(line, kEscapedLeader, std::u16string_view(u"%%"));
}

}  // namespace quenlith::build::markup::code
