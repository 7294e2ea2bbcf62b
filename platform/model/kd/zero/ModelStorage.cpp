#include "kd/zero/ModelStorage.hpp"

#include <new>

#include "kd/zero/Poison.hpp"

namespace kd::zero {

namespace {

std::size_t roundUp(std::size_t sizeBytes, std::size_t granule) noexcept {
  return (sizeBytes + granule - 1) & ~(granule - 1);
}

}  // namespace

ModelStorage::~ModelStorage() {
  for (void* chunk : chunks) {
    unpoison(chunk, kChunkBytes);
    ::operator delete (chunk, std::align_val_t{kChunkAlignment});
  }
}

void ModelStorage::destroy() noexcept {
  delete this;
}

void* ModelStorage::allocate(std::size_t sizeBytes) {
  if (sizeBytes > kLargestBlock) return ::operator new(sizeBytes);
  return allocateBlock(sizeBytes);
}

void ModelStorage::deallocate(void* room, std::size_t sizeBytes) noexcept {
  if (sizeBytes > kLargestBlock) {
    ::operator delete(room);
    return;
  }
  const std::size_t size = roundUp(sizeBytes, kGranule);
  auto* block = static_cast<FreeBlock*>(room);
  block->next = freeBlocks[size / kGranule];
  freeBlocks[size / kGranule] = block;
  poison(block, size);
}

void* ModelStorage::allocateElement(std::size_t sizeBytes) {
  void* element = allocateBlock(sizeBytes);
  ++elements;
  return element;
}

void ModelStorage::deallocateElement(void* element, std::size_t sizeBytes) noexcept {
  deallocate(element, sizeBytes);
  --elements;
  endIfUnused();
}

void* ModelStorage::allocateBlock(std::size_t sizeBytes) {
  const std::size_t size = roundUp(sizeBytes, kGranule);
  FreeBlock*& reusable = freeBlocks[size / kGranule];
  if (reusable != nullptr) {
    FreeBlock* block = reusable;
    unpoison(block, size);
    reusable = block->next;
    return block;
  }
  if (static_cast<std::size_t>(end - free) < size) addChunk();
  std::byte* block = free;
  free += size;
  unpoison(block, size);
  return block;
}

void ModelStorage::addChunk() {
  chunks.reserve(chunks.size() + 1);
  void* chunk = ::operator new (kChunkBytes, std::align_val_t{kChunkAlignment});
  chunks.push_back(chunk);
  *static_cast<ModelStorage**>(chunk) = this;
  free = static_cast<std::byte*>(chunk) + sizeof(ModelStorage*);
  end = static_cast<std::byte*>(chunk) + kChunkBytes;
  poison(free, static_cast<std::size_t>(end - free));
}

}  // namespace kd::zero
