#include "document/kdzero/Node.hpp"

#include <new>

#include "document/kdzero/Properties.hpp"
#include "kd/zero/ModelStorage.hpp"

namespace document::kdzero {

using contributors::kdzero::NodeContributorData;
using failures::kdzero::ParserFailure;
using kd::zero::ModelStorage;

/// What few nodes have.
struct Node::Impl::Extras {
  explicit Extras(kd::zero::ModelElement::Impl& node)
      : owner(&node),
        failures(owner, properties::kParserFailures),
        contributorData(owner, properties::kContributorData) {}

  // Stands before the collections, which find their owner through it.
  kd::zero::ModelElement::Impl* owner;
  kd::zero::PrimitiveSequence<ParserFailure> failures;
  kd::zero::ElementSequence<NodeContributorData> contributorData;
  std::u16string anchorId;
  boost::uuids::uuid uuid{};
};

// No element is of this class itself, so none ever ends as one.
const kd::zero::meta::Class Node::Impl::kMetaClass(u"document::kdzero::Node",
                                                   &kd::zero::meta::Class::modelElement(), 0,
                                                   nullptr);

void Node::Impl::setUuid(const boost::uuids::uuid& uuid) {
  extrasMutable().uuid = uuid;
}

void Node::Impl::endExtras() noexcept {
  extras->~Extras();
  ModelStorage::of(this).deallocate(extras, sizeof(Extras));
}

void Node::Impl::releaseExtras(kd::zero::ModelElement::Releases& releases) noexcept {
  extras->contributorData.releaseAll(releases);
}

Node Node::Impl::getParent() const noexcept {
  return Node::castFrom(getContainer());
}

std::span<const ParserFailure> Node::Impl::getParserFailures() const noexcept {
  if (extras == nullptr) return {};
  return {extras->failures.data(), extras->failures.size()};
}

kd::zero::PrimitiveSequence<ParserFailure>& Node::Impl::getParserFailuresMutable() {
  return extrasMutable().failures;
}

std::span<const NodeContributorData> Node::Impl::getContributorData() const noexcept {
  if (extras == nullptr) return {};
  return {extras->contributorData.data(), extras->contributorData.size()};
}

kd::zero::ElementSequence<NodeContributorData>& Node::Impl::getContributorDataMutable() {
  return extrasMutable().contributorData;
}

std::u16string_view Node::Impl::getAnchorId() const noexcept {
  if (extras == nullptr) return {};
  return extras->anchorId;
}

void Node::Impl::setAnchorId(std::u16string_view anchorId) {
  extrasMutable().anchorId = anchorId;
}

boost::uuids::uuid Node::Impl::getUuid() const noexcept {
  if (extras == nullptr) return {};
  return extras->uuid;
}

Node::Impl::Extras& Node::Impl::extrasMutable() {
  if (extras != nullptr) return *extras;
  ModelStorage& storage = ModelStorage::of(this);
  static_assert(sizeof(Extras) <= ModelStorage::kLargestBlock);
  extras = new (storage.allocate(sizeof(Extras))) Extras(*this);
  setHasParts();
  return *extras;
}

}  // namespace document::kdzero
