#pragma once

#include <array>
#include <bit>
#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <span>
#include <string_view>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "document/kdzero/keys.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/PrimitiveSequence.hpp"
#include "kd/zero/meta/Class.hpp"
#include "quenlith/export/model.hpp"

namespace document::kdzero {

/// Handle to a node of a document: the base of all kinds.
class Node : public kd::zero::Handle<Node, kd::zero::ModelElement> {
 public:
  class Impl;
};

/// What all nodes have: children, failures, contributor data and an anchor.
///
/// Children are unique, are contained in the node and have it as their parent; failures are unique;
/// contributor data is unique and contained in the node. What few nodes have (all but the children)
/// is allocated when it is first used.
class QUENLITH_MODEL_EXPORT Node::Impl : public kd::zero::ModelElement::Impl {
 public:
  using ustring = fl::i18n::ustring;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  const kd::zero::ElementSequence<Node>& getChildren() const noexcept { return children; }
  kd::zero::ElementSequence<Node>& getChildrenMutable() noexcept { return children; }
  /// The node that this one is a child of; empty for a top-level or detached node.
  Node getParent() const noexcept;

  /// Valid until the next change of the node's failures.
  std::span<const failures::kdzero::ParserFailure> getParserFailures() const noexcept;
  kd::zero::PrimitiveSequence<failures::kdzero::ParserFailure>& getParserFailuresMutable();

  /// Valid until the next change of the node's contributor data.
  std::span<const contributors::kdzero::NodeContributorData> getContributorData() const noexcept;
  kd::zero::ElementSequence<contributors::kdzero::NodeContributorData>& getContributorDataMutable();

  /// The anchor identifier, empty when none was set; valid until it is set again.
  std::u16string_view getAnchorId() const noexcept;
  /// Stores a copy of `anchorId`. Throws std::bad_alloc; the anchor is unchanged in that case.
  void setAnchorId(const ustring& anchorId);

  /// The identifier that the builder was given. The model never looks at it.
  boost::uuids::uuid getUuid() const noexcept;

 protected:
  Impl(kd::zero::meta::ClassKey nodeClass, const boost::uuids::uuid& uuid,
       Parts parts = Parts::kSome)
      : kd::zero::ModelElement::Impl(nodeClass, parts), children(*this, keys::kChildren) {
    if (!isNil(uuid)) setUuid(uuid);
  }
  ~Impl() {
    if (extras != nullptr) destroyExtras();
  }

  /// Drops the references to all elements of the node; for its destruction.
  void releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept {
    children.releaseAll(releases);
    if (extras != nullptr) releaseExtras(releases);
  }
  /// Checks the invariants of the node and reports its collections and blocks.
  void verifyParts(kd::zero::Verification& verification) const;

 private:
  static const kd::zero::meta::Class kMetaClass;

  struct Extras;

  // In two words: the compiler evaluates this when `uuid` is the constant nil identifier.
  static bool isNil(const boost::uuids::uuid& uuid) noexcept {
    const auto words = std::bit_cast<std::array<std::uint64_t, 2>>(uuid.data);
    return (words[0] | words[1]) == 0;
  }
  Extras& extrasMutable();
  // By value: a reference would keep the compiler from evaluating `isNil` for a constant.
  void setUuid(boost::uuids::uuid uuid);
  void releaseExtras(kd::zero::ModelElement::DeferredReleases& releases) noexcept;
  void destroyExtras() noexcept;

  kd::zero::ElementSequence<Node> children;
  Extras* extras = nullptr;
};

}  // namespace document::kdzero
