#pragma once

#include "contributors/kdzero/ContributorData.hpp"
#include "contributors/kdzero/LineData.hpp"
#include "kd/zero/ElementBuilder.hpp"
#include "kd/zero/ElementSequence.hpp"

namespace contributors::kdzero {

/// Handle to contributor data that is attached to a node.
class NodeContributorData : public kd::zero::Handle<NodeContributorData, ContributorData> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT NodeContributorData::Impl final : public ContributorData::Impl {
 public:
  template <class Builder>
  class BuilderBase;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// Unique; contained in this element.
  const kd::zero::ElementSequence<LineData>& getLineDataList() const noexcept { return lineData; }
  kd::zero::ElementSequence<LineData>& getLineDataListMutable() noexcept { return lineData; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid);
  ~Impl() = default;
  void releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept {
    lineData.releaseAll(releases);
  }
  void verifyParts(kd::zero::Verification& verification) const {
    lineData.verify(*this, verification);
  }

  kd::zero::ElementSequence<LineData> lineData;
};

template <class Builder>
class NodeContributorData::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached element. Any number of elements may have the same `uuid`.
  NodeContributorData createNodeContributorData(const boost::uuids::uuid& uuid) const {
    return make<NodeContributorData>(uuid);
  }
};

class NodeContributorData::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace contributors::kdzero
