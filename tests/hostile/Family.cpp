#include "hostile/Family.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace hostile {
namespace {

using fl::i18n::ustring;

// The first number, so that all have the same length.
constexpr std::size_t kFirst = 10'000'000;

void appendNumber(ustring& text, std::size_t number) {
  const std::string digits = std::to_string(kFirst + number);
  text.append(digits.begin(), digits.end());
}

std::size_t lengthOf(std::u16string_view part) {
  const auto numbers =
      std::ranges::count_if(part, [](char16_t unit) { return unit == u'$' || unit == u'^'; });
  return part.size() + static_cast<std::size_t>(numbers) * (kDigits - 1);
}

void appendPart(ustring& text, std::u16string_view part, std::size_t number, std::size_t count) {
  for (const char16_t unit : part) {
    if (unit == u'$') {
      appendNumber(text, number);
    } else if (unit == u'^') {
      appendNumber(text, count - number);
    } else {
      text += unit;
    }
  }
}

}  // namespace

Family repeated(std::string name, std::u16string_view head, std::u16string_view part,
                std::u16string_view tail) {
  return {std::move(name),
          [head = ustring(head), part = ustring(part), tail = ustring(tail)](std::size_t size) {
            const std::size_t count = size / lengthOf(part);
            ustring text(head);
            text.reserve(size + head.size() + tail.size());
            for (std::size_t i = 0; i < count; ++i) appendPart(text, part, i, count);
            return text.append(tail);
          }};
}

Family run(std::string name, std::u16string_view before, char16_t unit, std::u16string_view after) {
  return {std::move(name),
          [before = ustring(before), unit, after = ustring(after)](std::size_t size) {
            return ustring(before).append(size, unit).append(after);
          }};
}

}  // namespace hostile
