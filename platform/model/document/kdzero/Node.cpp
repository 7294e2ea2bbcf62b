#include "document/kdzero/Node.hpp"

#include <new>

#include "document/kdzero/Properties.hpp"
#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/Verification.hpp"

namespace document::kdzero {

using contributors::kdzero::NodeContributorData;
using failures::kdzero::ParserFailure;
using kd::zero::ModelStorage;

/// The parts that few nodes have, in a block that is allocated when one of them is first used. A
/// node without them is smaller by all of these members but one pointer.
struct Node::Impl::Extras {
  explicit Extras(kd::zero::ModelElement::Impl& node)
      : owner(&node),
        failures(owner, properties::kParserFailures),
        contributorData(owner, properties::kContributorData) {}

  // Before the collections, which store their distance to this pointer and find the owner through
  // it.
  kd::zero::ModelElement::Impl* owner;
  kd::zero::PrimitiveSequence<ParserFailure> failures;
  kd::zero::ElementSequence<NodeContributorData> contributorData;
  fl::i18n::ustring anchorId;
  boost::uuids::uuid uuid{};
};

// An abstract class: no element is of this class itself.
const kd::zero::meta::Class Node::Impl::kMetaClass(u"document::kdzero::Node",
                                                   &kd::zero::meta::Class::modelElement());

void Node::Impl::setUuid(boost::uuids::uuid uuid) {
  extrasMutable().uuid = uuid;
}

void Node::Impl::destroyExtras() noexcept {
  extras->~Extras();
  ModelStorage::of(this).deallocate(extras, sizeof(Extras));
}

void Node::Impl::releaseExtras(kd::zero::ModelElement::DeferredReleases& releases) noexcept {
  extras->contributorData.releaseAll(releases);
}

void Node::Impl::verifyParts(kd::zero::Verification& verification) const {
  children.verify(*this, verification);
  if (extras == nullptr) return;
  verification.addBlock(extras, sizeof(Extras));
  verification.expect(extras->owner == this, "the rare parts of a node know the node");
  if (verification.getBroken() != nullptr) return;
  extras->failures.verify(*this, verification);
  extras->contributorData.verify(*this, verification);
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

void Node::Impl::setAnchorId(const ustring& anchorId) {
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
