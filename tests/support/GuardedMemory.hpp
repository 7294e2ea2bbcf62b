#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <system_error>

namespace quenlith::test {

/// Memory between two inaccessible pages: an access past either end terminates the process, even
/// where no sanitizer detects it, as in vector code.
class GuardedMemory {
 public:
  /// Allocates at least `bytes` bytes of writable memory.
  explicit GuardedMemory(std::size_t bytes)
      : pageBytes(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
        usableBytes((bytes / pageBytes + 1) * pageBytes),
        whole(static_cast<std::byte*>(mmap(nullptr, usableBytes + 2 * pageBytes, PROT_NONE,
                                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    if (whole == MAP_FAILED || mprotect(begin(), usableBytes, PROT_READ | PROT_WRITE) != 0) {
      throw std::system_error(errno, std::generic_category(), "guarded memory");
    }
  }

  ~GuardedMemory() { munmap(whole, usableBytes + 2 * pageBytes); }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  std::byte* begin() const noexcept { return whole + pageBytes; }
  std::byte* end() const noexcept { return begin() + usableBytes; }

  /// Returns space for `count` units that ends at the guard.
  template <typename Unit>
  Unit* lastUnits(std::size_t count) const noexcept {
    return reinterpret_cast<Unit*>(end()) - count;
  }

  /// Returns a copy of `text` that ends at the guard, until the next copy is made.
  template <typename Unit>
  std::basic_string_view<Unit> copyToEnd(std::basic_string_view<Unit> text) const noexcept {
    return copyTo(lastUnits<Unit>(text.size()), text);
  }

  /// Like `copyToEnd`, but the copy begins after the guard.
  template <typename Unit>
  std::basic_string_view<Unit> copyToBegin(std::basic_string_view<Unit> text) const noexcept {
    return copyTo(reinterpret_cast<Unit*>(begin()), text);
  }

 private:
  template <typename Unit>
  static std::basic_string_view<Unit> copyTo(Unit* target,
                                             std::basic_string_view<Unit> text) noexcept {
    if (!text.empty()) std::memcpy(target, text.data(), text.size() * sizeof(Unit));
    return {target, text.size()};
  }

  std::size_t pageBytes;
  std::size_t usableBytes;
  std::byte* whole;
};

}  // namespace quenlith::test
