#include "tessera/check/fixes/fixText.hpp"

#include <utility>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::fixes {
namespace {

// Two rounds are usual where fixes overlap; where those of a line must not be made together, each
// takes a round. The limit is for a fix that does not help, which would be a fault of its rule.
constexpr int kMaxRounds = 40;

/// Returns how many failures of each kind there are, in the order of the catalogue.
std::vector<std::size_t> countFailures(const catalogue::CheckedFile& file) {
  std::vector<std::size_t> counts(catalogue::catalogue().size());
  for (const catalogue::Diagnostic& diagnostic : file.diagnostics) {
    const bool isFailure = severityOf(diagnostic) == catalogue::Severity::kFailure;
    if (isFailure) ++counts[static_cast<std::size_t>(diagnostic.kind)];
  }
  return counts;
}

bool hasNewFailure(const catalogue::CheckedFile& before, const catalogue::CheckedFile& after) {
  const auto earlier = countFailures(before);
  const auto later = countFailures(after);
  for (std::size_t kind = 0; kind < later.size(); ++kind) {
    if (later[kind] > earlier[kind]) return true;
  }
  return false;
}

}  // namespace

FixResult fixText(FixedText& text, const Check& check) {
  FixResult result;
  result.checked = check(text.bytes());
  for (int round = 0; round < kMaxRounds; ++round) {
    FixedText fixed = text;
    const std::size_t count = fixed.apply(result.checked.diagnostics);
    if (count == 0) break;
    catalogue::CheckedFile checked = check(fixed.bytes());
    // The rules look at one fix, or at those of one line, and not at everything that several make.
    if (hasNewFailure(result.checked, checked)) break;
    text = std::move(fixed);
    result.count += count;
    result.checked = std::move(checked);
  }
  return result;
}

}  // namespace tessera::check::fixes
