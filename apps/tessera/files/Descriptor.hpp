#pragma once

#include <unistd.h>

#include <utility>

namespace tessera::files {

/// An open file that is closed at the end. Negative if it could not be opened.
class Descriptor {
 public:
  explicit Descriptor(int number) noexcept : number(number) {}
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }
  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number, other.number);
    return *this;
  }

  int get() const noexcept { return number; }

  /// Returns the file, which then stays open at the end.
  int release() noexcept { return std::exchange(number, -1); }

  /// Returns whether the system reported no error.
  bool close() noexcept { return ::close(std::exchange(number, -1)) == 0; }

 private:
  int number;
};

}  // namespace tessera::files
