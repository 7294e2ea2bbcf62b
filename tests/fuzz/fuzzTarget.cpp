// The entry point for libFuzzer of one target; the build defines QUENLITH_FUZZ_TARGET as its name.

#include <cstddef>
#include <cstdint>

#include "fuzz/targets.hpp"

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzing library fixes the name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quenlith::fuzz::QUENLITH_FUZZ_TARGET({reinterpret_cast<const char*>(data), size});
  return 0;
}
