#pragma once

#include <boost/uuid/uuid.hpp>
#include <map>
#include <string>
#include <utility>

#include "foundation/json/Value.hpp"
#include "kd/zero/ElementBuilder.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Class.hpp"
#include "quenlith/export/model.hpp"

namespace contributors::kdzero {

/// Handle to one contributor's data for a line.
class LineData : public kd::zero::Handle<LineData, kd::zero::ModelElement> {
 public:
  class Impl;
  class Builder;
};

class QUENLITH_MODEL_EXPORT LineData::Impl final : public kd::zero::ModelElement::Impl {
 public:
  /// Keys are UTF-8.
  using Data = std::map<std::string, foundation::json::Value>;
  template <class Builder>
  class BuilderBase;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  const Data& getData() const noexcept { return data; }
  void setData(Data newData) noexcept { data = std::move(newData); }

  /// The identifier that the builder was given. The model never looks at it.
  boost::uuids::uuid getUuid() const noexcept { return uuid; }

 private:
  friend struct kd::zero::ElementMaker;

  static const kd::zero::meta::Class kMetaClass;

  explicit Impl(const boost::uuids::uuid& uuid) noexcept
      : kd::zero::ModelElement::Impl(classOf()), uuid(uuid) {}
  ~Impl() = default;
  void releaseAll(kd::zero::ModelElement::DeferredReleases&) noexcept {}

  Data data;
  boost::uuids::uuid uuid;
};

template <class Builder>
class LineData::Impl::BuilderBase : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  /// Returns a new, detached element. Any number of elements may have the same `uuid`.
  LineData createLineData(const boost::uuids::uuid& uuid) const { return make<LineData>(uuid); }
};

class LineData::Builder : public Impl::BuilderBase<Builder> {
 public:
  using BuilderBase::BuilderBase;
};

}  // namespace contributors::kdzero
