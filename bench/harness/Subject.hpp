#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// One compared program: builds something from lines, and destroys it.
///
/// The constructor creates the input, so that it is not measured. `build` and `destroy` are called
/// alternately.
class Subject {
 public:
  Subject() = default;
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  virtual ~Subject() = default;

  virtual void build() = 0;
  /// Checks what was built. Throws std::runtime_error, which says what is wrong, when a count of
  /// lines, nodes or text does not match the lines.
  virtual void check() const = 0;
  virtual void destroy() {}
};

/// Throws std::runtime_error when `found` is not `wanted`.
void expectCount(std::string_view what, std::size_t found, std::size_t wanted);

}  // namespace bench
