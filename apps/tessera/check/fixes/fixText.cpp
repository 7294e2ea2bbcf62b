#include "tessera/check/fixes/fixText.hpp"

#include <span>
#include <utility>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"

namespace tessera::check::fixes {
namespace {

// Two rounds are usual where fixes overlap; where those of a line must not be made together, each
// takes a round. The limit is for a fix that does not help, which would be a fault of its rule.
constexpr int kMaxRounds = 40;
// How many attempts to make fixes may fail, so that the cost is linear in any case. To find one fix
// among a thousand takes ten to twenty.
constexpr std::size_t kMaxFailedAttempts = 64;

using catalogue::CheckedFile;
using catalogue::Fix;

/// Returns how many failures of each kind there are, in the order of the catalogue.
std::vector<std::size_t> countFailures(const CheckedFile& file) {
  std::vector<std::size_t> counts(catalogue::catalogue().size());
  for (const catalogue::Diagnostic& diagnostic : file.diagnostics) {
    const bool isFailure = severityOf(diagnostic) == catalogue::Severity::kFailure;
    if (isFailure) ++counts[static_cast<std::size_t>(diagnostic.kind)];
  }
  return counts;
}

bool hasNewFailure(const CheckedFile& before, const CheckedFile& after) {
  const auto earlier = countFailures(before);
  const auto later = countFailures(after);
  for (std::size_t kind = 0; kind < later.size(); ++kind) {
    if (later[kind] > earlier[kind]) return true;
  }
  return false;
}

/// Makes the fixes of one check, except those after which there would be a failure more.
class FixRound {
 public:
  /// Borrows everything. `failedAttempts` counts the attempts that fail.
  FixRound(const FixedText& text, const CheckedFile& before, const Check& check,
           std::size_t& failedAttempts)
      : text(text), before(before), check(check), failedAttempts(failedAttempts), fixed(text) {}

  /// Returns how many fixes were made.
  std::size_t run() {
    std::vector<const Fix*> fixes;
    for (const catalogue::Diagnostic& diagnostic : before.diagnostics) {
      if (diagnostic.fix) fixes.push_back(&*diagnostic.fix);
    }
    makeHarmless(fixes);
    return count;
  }

  FixedText takeText() { return std::move(fixed); }
  CheckedFile takeChecked() { return std::move(checked); }

 private:
  using Fixes = std::span<const Fix* const>;

  void makeHarmless(Fixes fixes) {
    if (!attempt(fixes)) split(fixes);
  }

  /// Makes the harmless ones of fixes of which at least one is not. The depth of the recursion is
  /// the logarithm of their number.
  void split(Fixes fixes) {
    if (fixes.size() < 2 || failedAttempts >= kMaxFailedAttempts) return;
    const Fixes first = fixes.first(fixes.size() / 2);
    const Fixes second = fixes.subspan(first.size());
    // If the first half is harmless, the second one is not.
    if (attempt(first)) return split(second);
    split(first);
    makeHarmless(second);
  }

  /// Makes `fixes` in addition to those that were made; returns false, and changes nothing, if
  /// there is a failure more then, or too many attempts have failed.
  bool attempt(Fixes fixes) {
    if (failedAttempts >= kMaxFailedAttempts) return false;
    std::vector<const Fix*> tried = made;
    tried.insert(tried.end(), fixes.begin(), fixes.end());
    FixedText result = text;
    const std::size_t resultCount = result.apply(tried);
    if (resultCount == count) return true;
    CheckedFile after = check(result.bytes());
    // The rules look at one fix, or at those of one line, and not at everything that several make.
    if (hasNewFailure(made.empty() ? before : checked, after)) {
      ++failedAttempts;
      return false;
    }
    made = std::move(tried);
    count = resultCount;
    fixed = std::move(result);
    checked = std::move(after);
    return true;
  }

  const FixedText& text;
  const CheckedFile& before;
  const Check& check;
  std::size_t& failedAttempts;
  // The fixes that were made, how many of them do not overlap, and the result.
  std::vector<const Fix*> made;
  std::size_t count = 0;
  FixedText fixed;
  CheckedFile checked;
};

}  // namespace

FixResult fixText(FixedText& text, const Check& check) {
  FixResult result;
  result.checked = check(text.bytes());
  std::size_t failedAttempts = 0;
  for (int round = 0; round < kMaxRounds; ++round) {
    FixRound fixes(text, result.checked, check, failedAttempts);
    const std::size_t count = fixes.run();
    if (count == 0) break;
    text = fixes.takeText();
    result.count += count;
    result.checked = fixes.takeChecked();
  }
  return result;
}

}  // namespace tessera::check::fixes
