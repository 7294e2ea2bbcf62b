#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace quenlith::elf {

/// What is wrong with a library, and what its user can do about it. Neither names the file.
struct Fault {
  std::string what;
  std::string remedy;
};

/// Thrown when a file cannot be used as a shared library.
class UnusableLibrary : public std::runtime_error {
 public:
  explicit UnusableLibrary(Fault found)
      : std::runtime_error(found.what + "; " + found.remedy), found(std::move(found)) {}

  const Fault& fault() const noexcept { return found; }

 private:
  Fault found;
};

}  // namespace quenlith::elf
