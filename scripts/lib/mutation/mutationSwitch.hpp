#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <type_traits>

// Included by the sources that scripts/mutate rewrites: chooses one of their mutants at run time.
namespace mutation {

// The mutant to run, 0 for none, -1 before the environment was read; and one byte per mutant, which is set when
// its code is reached.
inline std::atomic<int> chosen{-1};
inline std::atomic<unsigned char*> reached{nullptr};

inline void mapReached(const char* path) noexcept {
  const int file = open(path, O_RDWR | O_CLOEXEC);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) std::abort();
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const bytes = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (bytes == MAP_FAILED) std::abort();
  close(file);
  reached = static_cast<unsigned char*>(bytes);
}

inline void readEnvironment() noexcept {
  const int error = errno;
  if (const char* const path = std::getenv("MUTANTS_REACHED")) mapReached(path);
  const char* const number = std::getenv("MUTANT");
  chosen = number != nullptr ? std::atoi(number) : 0;
  errno = error;
}

inline bool onAtRunTime(int number) noexcept {
  if (chosen.load(std::memory_order_relaxed) < 0) readEnvironment();
  if (unsigned char* const bytes = reached.load(std::memory_order_relaxed)) bytes[number] = 1;
  return chosen.load(std::memory_order_relaxed) == number;
}

// Tells whether the mutant `number` runs; never while the compiler evaluates a constant.
constexpr bool on(int number) noexcept {
  if (std::is_constant_evaluated()) return false;
  return onAtRunTime(number);
}

}  // namespace mutation
