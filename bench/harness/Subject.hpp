#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// One program under comparison: builds something out of lines, and ends it.
///
/// The input is made by the constructor, so that it is not measured. `build` and `destroy` take
/// turns.
class Subject {
 public:
  Subject() = default;
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  virtual ~Subject() = default;

  virtual void build() = 0;
  /// Walks what was built. Throws std::runtime_error, saying what is wrong, when a count of
  /// lines, nodes or text is not what the lines give.
  virtual void check() const = 0;
  virtual void destroy() {}
};

/// Throws std::runtime_error when `found` is not `wanted`.
void expectCount(std::string_view what, std::size_t found, std::size_t wanted);

}  // namespace bench
