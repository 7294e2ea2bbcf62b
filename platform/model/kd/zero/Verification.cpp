#include "kd/zero/Verification.hpp"

#include <algorithm>
#include <functional>

#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/ReferenceCollection.hpp"
#include "kd/zero/meta/Class.hpp"
#include "kd/zero/meta/Property.hpp"

namespace kd::zero {

void Verification::checkTree(const ModelElement::Impl& top) {
  if (!canBeRead(&top)) return;
  checkContainer(top);
  // An element of a tree that was checked before may be the top of this one.
  if (places.try_emplace(&top, 0).second) pending.push_back(&top);
  // The first broken invariant ends the run: what follows from it might not be safe to read.
  while (!pending.empty() && broken == nullptr) {
    const ModelElement::Impl& element = *pending.back();
    pending.pop_back();
    checkElement(element);
  }
}

void Verification::checkStorage() {
  storage.verify(*this);
}

void Verification::addBlock(const void* begin, std::size_t sizeBytes) {
  expect(sizeBytes > ModelStorage::kLargestBlock || storage.hasInChunk(begin, sizeBytes),
         "a small block is within one chunk of its storage");
  blocks.push_back({static_cast<const std::byte*>(begin), sizeBytes});
}

void Verification::addPlace(const ModelElement::Impl* element) {
  if (!canBeRead(element)) return;
  const auto [entry, isNew] = places.try_emplace(element, 0);
  ++entry->second;
  if (isNew) pending.push_back(element);
}

bool Verification::canBeRead(const ModelElement::Impl* element) noexcept {
  expect(storage.hasInChunk(element, sizeof(ModelElement::Impl)),
         "a place of a collection refers to an element of the same model");
  return broken == nullptr;
}

void Verification::checkElement(const ModelElement::Impl& element) {
  expect(element.references > 0, "an element that is in use has a reference");
  const meta::Class* metaClass = meta::Class::at(element.classIndex);
  if (element.classIndex == meta::ClassKey::kNotInTable) metaClass = &element.getMetaClass();
  expect(metaClass != nullptr && metaClass->getVerify() != nullptr,
         "an element is of a class that has elements");
  expect(element.hasParts || !element.containsOthers, "an element with children has parts");
  if (broken != nullptr) return;
  const std::size_t prefixBytes = metaClass->getPrefixBytes();
  addBlock(reinterpret_cast<const std::byte*>(&element) - prefixBytes,
           prefixBytes + metaClass->getSizeBytes() + element.extraBytes());
  metaClass->getVerify()(element, *this);
}

void Verification::checkContainer(const ModelElement::Impl& element) {
  if (element.container == nullptr || !canBeRead(element.container)) return;
  const bool known = meta::Property::isAt(element.containerProperty);
  const auto collectionOf =
      known ? meta::Property::at(element.containerProperty).traits().collectionOf : nullptr;
  expect(collectionOf != nullptr, "a container has a collection that contains elements");
  if (collectionOf == nullptr) return;
  expect(collectionOf(*element.container)->isAmongLast(element),
         "an element is in the collection of its container");
}

void Verification::finish() {
  for (const auto& [element, count] : places) {
    expect(count <= element->references, "an element has a reference for each of its places");
  }
  std::sort(blocks.begin(), blocks.end(), [](const Block& left, const Block& right) {
    return std::less<const std::byte*>{}(left.begin, right.begin);
  });
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    expect(blocks[i - 1].begin + blocks[i - 1].sizeBytes <= blocks[i].begin,
           "no two blocks of the storage overlap");
  }
}

}  // namespace kd::zero
