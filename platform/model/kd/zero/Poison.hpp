#pragma once

#include <cstddef>

// In builds with the address sanitizer, memory of a chunk that is not in use is poisoned. The
// sanitizer then reports a use of an element after it was destroyed, although its chunk is still
// allocated.
#if defined(__SANITIZE_ADDRESS__)
#define QUENLITH_MODEL_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUENLITH_MODEL_POISONS 1
#endif
#endif

#ifdef QUENLITH_MODEL_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace kd::zero {

inline void poison([[maybe_unused]] void* begin, [[maybe_unused]] std::size_t sizeBytes) noexcept {
#ifdef QUENLITH_MODEL_POISONS
  ASAN_POISON_MEMORY_REGION(begin, sizeBytes);
#endif
}

inline void unpoison([[maybe_unused]] void* begin,
                     [[maybe_unused]] std::size_t sizeBytes) noexcept {
#ifdef QUENLITH_MODEL_POISONS
  ASAN_UNPOISON_MEMORY_REGION(begin, sizeBytes);
#endif
}

}  // namespace kd::zero
