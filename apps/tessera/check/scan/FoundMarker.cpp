#include "tessera/check/scan/FoundMarker.hpp"

#include <algorithm>
#include <limits>

#include "foundation/json/Lexer.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check::scan {
namespace {

bool isDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

/// Removes the next number from `text` and returns it.
std::uint64_t takeNumber(std::u16string_view& text) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  const auto isOther = [](char16_t unit) { return !isDigit(unit); };
  text.remove_prefix(static_cast<std::size_t>(std::ranges::find_if(text, isDigit) - text.begin()));
  const auto end = std::ranges::find_if(text, isOther);
  std::uint64_t number = 0;
  for (auto digit = text.begin(); digit != end; ++digit) {
    const auto value = static_cast<unsigned>(*digit - u'0');
    number = number > (kMost - value) / 10 ? kMost : number * 10 + value;
    if (number == kMost) break;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
  return number;
}

std::u16string decodeId(std::u16string_view written) {
  if (!written.starts_with(u'"')) return std::u16string(written);
  foundation::json::Lexer lexer(written);
  if (lexer.next() != foundation::json::Token::kString) return std::u16string(written);
  return lexer.text();
}

}  // namespace

std::uint64_t FoundMarker::end() const noexcept {
  if (isMarker()) return parts.problemPosition;
  if (parts.bodyEnd) return *parts.bodyEnd;
  return std::min<std::uint64_t>(std::max(parts.problemPosition, parts.opening + 2) + 1,
                                 lineText.size());
}

std::string nameOf(const FoundMarker& marker) {
  return marker.id.empty() ? "without an id" : quoted(marker.id);
}

FoundMarker makeFoundMarker(const quenlith::syntax::MarkerCandidate& parts, std::uint64_t line,
                            std::u16string_view lineText) {
  FoundMarker found;
  found.parts = parts;
  found.line = line;
  found.lineText = lineText;
  found.id = decodeId(parts.id);
  if (!parts.range.empty()) {
    std::u16string_view range = parts.range;
    const std::uint64_t begin = takeNumber(range);
    found.range.emplace(begin, takeNumber(range));
  }
  return found;
}

}  // namespace tessera::check::scan
