#include "fuzz/targets.hpp"

#include <array>

namespace quenlith::fuzz {

std::span<const Target> targets() {
  static constexpr std::array kTargets{Target{"filter", &checkFilter},
                                       Target{"manifest", &checkManifest},
                                       Target{"library", &checkLibrary}};
  return kTargets;
}

}  // namespace quenlith::fuzz
