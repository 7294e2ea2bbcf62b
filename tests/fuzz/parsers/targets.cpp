#include "fuzz/targets.hpp"

#include <array>

namespace quenlith::fuzz {

std::span<const Target> targets() {
  static constexpr std::array kTargets{Target{"line", &checkLine}, Target{"task", &checkTask}};
  return kTargets;
}

}  // namespace quenlith::fuzz
