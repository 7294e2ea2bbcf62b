#pragma once

#include <cstddef>

// Under the address sanitizer, room that is given back or not handed out yet is marked, so
// that a use of an element after its end is reported although its chunk lives on.
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

inline void poison([[maybe_unused]] void* room, [[maybe_unused]] std::size_t sizeBytes) noexcept {
#ifdef QUENLITH_MODEL_POISONS
  ASAN_POISON_MEMORY_REGION(room, sizeBytes);
#endif
}

inline void unpoison([[maybe_unused]] void* room, [[maybe_unused]] std::size_t sizeBytes) noexcept {
#ifdef QUENLITH_MODEL_POISONS
  ASAN_UNPOISON_MEMORY_REGION(room, sizeBytes);
#endif
}

}  // namespace kd::zero
