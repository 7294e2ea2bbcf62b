#include "tessera/check/scan/CharacterBreaks.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <iterator>

namespace tessera::check::scan {
namespace {

// No unit below this one joins the character before it, apart from the LF of a CRLF, which no line
// has.
constexpr char16_t kFirstJoining = 0x300;

bool isPair(std::u16string_view line, std::size_t at) {
  return (line[at] & 0xFC00) == 0xD800 && at + 1 < line.size() && (line[at + 1] & 0xFC00) == 0xDC00;
}

/// Returns the code point at `at`, which may be an unpaired surrogate.
utf8proc_int32_t codePointAt(std::u16string_view line, std::size_t at) {
  if (!isPair(line, at)) return line[at];
  return 0x10000 + ((line[at] & 0x3FF) << 10) + (line[at + 1] & 0x3FF);
}

}  // namespace

bool CharacterBreaks::isBreak(std::u16string_view line, std::uint64_t at) {
  if (at == 0 || at == line.size() || line[at] < kFirstJoining) return true;
  read(line);
  return std::ranges::binary_search(begins, at);
}

std::pair<std::uint64_t, std::uint64_t> CharacterBreaks::characterAround(std::u16string_view line,
                                                                         std::uint64_t at) {
  read(line);
  const auto next = std::ranges::upper_bound(begins, at);
  const std::uint64_t end = next == begins.end() ? line.size() : *next;
  return {*std::prev(next), end};
}

void CharacterBreaks::read(std::u16string_view line) {
  if (!begins.empty()) return;
  utf8proc_int32_t state = 0;
  utf8proc_int32_t previous = 0;
  for (std::size_t at = 0; at < line.size(); at += isPair(line, at) ? 2 : 1) {
    const utf8proc_int32_t current = codePointAt(line, at);
    if (at == 0 || utf8proc_grapheme_break_stateful(previous, current, &state))
      begins.push_back(at);
    previous = current;
  }
}

}  // namespace tessera::check::scan
