#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace quenlith::syntax {

/// The elements that have a meaning; `kOther` is every other element.
enum class KnownElement : std::uint8_t { kControl, kOutput, kTask, kText, kOther };

/// Returns the element with exactly this name.
inline KnownElement findKnownElement(std::u16string_view name) noexcept {
  using std::string_view_literals::operator""sv;  // A literal without it is measured at run time.
  // The caller has compared the sizes.
  const auto is = [name](std::u16string_view known) {
    return std::memcmp(name.data(), known.data(), known.size() * sizeof(char16_t)) == 0;
  };
  switch (name.size()) {
    case 4:
      return is(u"text"sv)   ? KnownElement::kText
             : is(u"task"sv) ? KnownElement::kTask
                             : KnownElement::kOther;
    case 6:
      return is(u"output"sv) ? KnownElement::kOutput : KnownElement::kOther;
    case 7:
      return is(u"control"sv) ? KnownElement::kControl : KnownElement::kOther;
    default:
      return KnownElement::kOther;
  }
}

}  // namespace quenlith::syntax
