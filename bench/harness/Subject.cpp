#include "harness/Subject.hpp"

#include <stdexcept>

namespace bench {

void expectCount(std::string_view what, std::size_t found, std::size_t wanted) {
  if (found == wanted) return;
  throw std::runtime_error(std::string(what) + ": found " + std::to_string(found) + ", wanted " +
                           std::to_string(wanted));
}

}  // namespace bench
