#include "FailingAllocation.hpp"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
thread_local std::size_t allocationsLeft = kNever;
thread_local bool failed = false;

bool mayAllocate() {
  if (allocationsLeft == kNever) return true;
  if (allocationsLeft > 0) {
    --allocationsLeft;
    return true;
  }
  allocationsLeft = kNever;
  failed = true;
  return false;
}

void* allocate(std::size_t size) noexcept {
  return mayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) noexcept {
  const auto unit = static_cast<std::size_t>(alignment);
  return mayAllocate() ? std::aligned_alloc(unit, (size + unit) / unit * unit) : nullptr;
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

FailingAllocation::FailingAllocation(std::size_t countBefore) {
  failed = false;
  allocationsLeft = countBefore;
}

FailingAllocation::~FailingAllocation() {
  allocationsLeft = kNever;
}

bool FailingAllocation::hasFailed() const {
  return failed;
}

void* operator new(std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new[](std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(size, alignment);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  std::free(memory);
}
