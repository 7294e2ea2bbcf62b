#include "tessera/check/scan/CharacterBreaks.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <iterator>

#include "tessera/characters/Character.hpp"

namespace tessera::check::scan {
namespace {

// No unit below this one joins the character before it, apart from the LF of a CRLF, which no line
// has.
constexpr char16_t kFirstJoining = 0x300;

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
  for (std::size_t at = 0; at < line.size();) {
    const characters::Character character = characters::firstOf(line.substr(at));
    const auto current = static_cast<utf8proc_int32_t>(character.code);
    if (at == 0 || utf8proc_grapheme_break_stateful(previous, current, &state)) {
      begins.push_back(at);
    }
    previous = current;
    at += character.units;
  }
}

}  // namespace tessera::check::scan
