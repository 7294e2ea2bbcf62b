#include "tessera/check/fixes/fixText.hpp"

namespace tessera::check::fixes {
namespace {

// Two rounds are usual where fixes overlap. The limit is for a fix that does not help, which would
// be a fault of its rule.
constexpr int kMaxRounds = 10;

}  // namespace

FixResult fixText(FixedText& text, const Check& check) {
  FixResult result;
  result.checked = check(text.bytes());
  for (int round = 0; round < kMaxRounds; ++round) {
    const std::size_t count = text.apply(result.checked.diagnostics);
    if (count == 0) break;
    result.count += count;
    result.checked = check(text.bytes());
  }
  return result;
}

}  // namespace tessera::check::fixes
