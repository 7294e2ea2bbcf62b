#include "fuzz/targets.hpp"

#include <array>

namespace quenlith::fuzz {

std::span<const Target> targets() {
  static constexpr std::array kTargets{Target{"text", &checkText},
                                       Target{"json", &checkJson},
                                       Target{"scanner", &checkScanner},
                                       Target{"marker", &checkMarker},
                                       Target{"collections", &checkCollections},
                                       Target{"handles", &checkHandles}};
  return kTargets;
}

}  // namespace quenlith::fuzz
