#include "support/FailingAllocations.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

thread_local std::size_t allocations = 0;
thread_local std::ptrdiff_t live = 0;
thread_local std::size_t firstToFail = kNever;
thread_local std::size_t failureCount = kNever;

thread_local bool failed = false;

thread_local std::size_t hookedAllocation = kNever;
thread_local std::function<void()> hook;

/// Prints at the end of the program how many allocations have failed.
struct Summary {
  ~Summary() {
    if (count != 0) std::printf("%zu allocations failed on purpose\n", count.load());
  }
  std::atomic<std::size_t> count = 0;
};
Summary summary;

enum class Need { kMust, kMay };

// Counts an allocation and says whether it fails.
bool fails(Need need) noexcept {
  const std::size_t number = allocations++;
  if (number >= hookedAllocation) {
    hookedAllocation = kNever;
    hook();
  }
  if (number < firstToFail || number - firstToFail >= failureCount) return false;
  if (need == Need::kMay && failureCount == 1) {
    ++firstToFail;
    return false;
  }
  failed = true;
  ++summary.count;
  return true;
}

void* allocate(std::size_t size, Need need = Need::kMust) noexcept {
  if (fails(need)) return nullptr;
  ++live;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocate(std::size_t size, std::align_val_t alignment, Need need = Need::kMust) noexcept {
  if (fails(need)) return nullptr;
  ++live;
  const auto unit = static_cast<std::size_t>(alignment);
  const std::size_t rounded = (size + unit - 1) / unit * unit;
  return std::aligned_alloc(unit, rounded == 0 ? unit : rounded);
}

void release(void* memory) noexcept {
  if (memory != nullptr) --live;
  std::free(memory);
}

void* orThrow(void* memory) {
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new[](std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new(std::size_t size, std::align_val_t unit) {
  return orThrow(allocate(size, unit));
}
void* operator new[](std::size_t size, std::align_val_t unit) {
  return orThrow(allocate(size, unit));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size, Need::kMay);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size, Need::kMay);
}
void* operator new(std::size_t size, std::align_val_t unit, const std::nothrow_t&) noexcept {
  return allocate(size, unit, Need::kMay);
}
void* operator new[](std::size_t size, std::align_val_t unit, const std::nothrow_t&) noexcept {
  return allocate(size, unit, Need::kMay);
}
void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}

namespace quenlith::test {

std::size_t allocationCount() {
  return allocations;
}

std::ptrdiff_t liveAllocations() {
  return live;
}

FailingAllocations::FailingAllocations(std::size_t first, std::size_t count) {
  failureCount = count;
  failed = false;
  firstToFail = first > kNever - allocations ? kNever : allocations + first;
}

FailingAllocations::~FailingAllocations() {
  firstToFail = kNever;
}

bool FailingAllocations::hasFailed() const {
  return failed;
}

AllocationHook::AllocationHook(std::size_t number, std::function<void()> action) {
  hook = std::move(action);
  hookedAllocation = allocations + number;
}

AllocationHook::~AllocationHook() {
  hookedAllocation = kNever;
  hook = nullptr;
}

bool AllocationHook::hasCalled() const {
  return hookedAllocation == kNever;
}

}  // namespace quenlith::test
