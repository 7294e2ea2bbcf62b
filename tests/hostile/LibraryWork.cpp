#include "hostile/LibraryWork.hpp"

#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace hostile {
namespace {

// One thread at a time is measured.
LibraryWork total;

void add(std::size_t bytes) {
  total.bytes += bytes;
}

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void* allocate(std::size_t size, std::size_t alignment) {
  void* const memory =
      alignment == 0
          ? std::malloc(size)
          : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (memory == nullptr) throw std::bad_alloc();
  total.liveBytes += malloc_usable_size(memory);
  total.peakBytes = std::max(total.peakBytes, total.liveBytes);
  return memory;
}

void release(void* memory) noexcept {
  if (memory == nullptr) return;
  total.liveBytes -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

LibraryWork libraryWork() {
  return total;
}

void resetPeak() {
  total.peakBytes = total.liveBytes;
}

}  // namespace hostile

// They replace those of the C library, in this program and in the libraries that it loads.
extern "C" {

void* memmove(void* target, const void* source, std::size_t size) noexcept {
  static auto* const real = hostile::next<void*(void*, const void*, std::size_t)>("memmove");
  hostile::add(size);
  return real(target, source, size);
}

void* memcpy(void* __restrict target, const void* __restrict source, std::size_t size) noexcept {
  return memmove(target, source, size);
}

void* memset(void* target, int byte, std::size_t size) noexcept {
  static auto* const real = hostile::next<void*(void*, int, std::size_t)>("memset");
  hostile::add(size);
  return real(target, byte, size);
}

int memcmp(const void* one, const void* other, std::size_t size) noexcept {
  static auto* const real = hostile::next<int(const void*, const void*, std::size_t)>("memcmp");
  hostile::add(size);
  return real(one, other, size);
}

void* memchr(const void* text, int byte, std::size_t size) noexcept {
  static auto* const real = hostile::next<void*(const void*, int, std::size_t)>("memchr");
  void* const found = real(text, byte, size);
  const auto passed = static_cast<const char*>(found) - static_cast<const char*>(text);
  hostile::add(found == nullptr ? size : static_cast<std::size_t>(passed));
  return found;
}

std::size_t strlen(const char* text) noexcept {
  static auto* const real = hostile::next<std::size_t(const char*)>("strlen");
  const std::size_t size = real(text);
  hostile::add(size);
  return size;
}

}  // extern "C"

void* operator new(std::size_t size) {
  return hostile::allocate(size, 0);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return hostile::allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
  hostile::release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  hostile::release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  hostile::release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  hostile::release(memory);
}
