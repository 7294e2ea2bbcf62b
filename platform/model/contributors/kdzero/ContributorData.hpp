#pragma once

#include <boost/uuid/uuid.hpp>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/meta/Class.hpp"
#include "quenlith/export/model.hpp"

namespace contributors::kdzero {

/// Handle to the data that a feature contributes.
class ContributorData : public kd::zero::Handle<ContributorData, kd::zero::ModelElement> {
 public:
  class Impl;
};

class QUENLITH_MODEL_EXPORT ContributorData::Impl : public kd::zero::ModelElement::Impl {
 public:
  using ustring = fl::i18n::ustring;

  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// Valid until it is set again or the element is destroyed.
  std::u16string_view getContributingFeature() const noexcept { return contributingFeature; }
  void setContributingFeature(const ustring& feature) { contributingFeature = feature; }

  /// The identifier that the builder was given. The model never looks at it.
  boost::uuids::uuid getUuid() const noexcept { return uuid; }

 protected:
  Impl(const kd::zero::meta::Class& dataClass, const boost::uuids::uuid& uuid) noexcept
      : kd::zero::ModelElement::Impl(dataClass), uuid(uuid) {}
  ~Impl() = default;

 private:
  static const kd::zero::meta::Class kMetaClass;

  ustring contributingFeature;
  boost::uuids::uuid uuid;
};

}  // namespace contributors::kdzero
