#include "fuzz/targets.hpp"

#include <array>

namespace quenlith::fuzz {

std::span<const Target> targets() {
  static constexpr std::array kTargets{
      Target{"source", &checkSource},   Target{"appendix", &checkAppendix},
      Target{"inputs", &checkInputs},   Target{"fixes", &checkFixes},
      Target{"reports", &checkReports}, Target{"page", &checkPage},
      Target{"replay", &checkReplay}};
  return kTargets;
}

}  // namespace quenlith::fuzz
