#include "contributors/kdzero/ContributorData.hpp"
#include "contributors/kdzero/LineData.hpp"
#include "contributors/kdzero/NodeContributorData.hpp"
#include "kd/zero/meta/Property.hpp"

namespace contributors::kdzero {

using kd::zero::ElementMaker;
using kd::zero::ModelElement;
using kd::zero::meta::Class;
using kd::zero::meta::Property;

namespace {

kd::zero::ReferenceCollection* lineDataListOf(ModelElement::Impl& owner) noexcept {
  return &static_cast<NodeContributorData::Impl&>(owner).getLineDataListMutable();
}

const Property& lineDataList() {
  static const Property property({.name = u"lineDataList",
                                  .many = true,
                                  .unique = true,
                                  .composite = true,
                                  .collectionOf = &lineDataListOf});
  return property;
}

}  // namespace

// An abstract class: no element is of this class itself.
const kd::zero::meta::Class ContributorData::Impl::kMetaClass(
    u"contributors::kdzero::ContributorData", &Class::modelElement());

const kd::zero::meta::Class NodeContributorData::Impl::kMetaClass = ElementMaker::describe<Impl>(
    u"contributors::kdzero::NodeContributorData", ContributorData::Impl::classOf());

const kd::zero::meta::Class LineData::Impl::kMetaClass =
    ElementMaker::describe<Impl>(u"contributors::kdzero::LineData", Class::modelElement());

NodeContributorData::Impl::Impl(const boost::uuids::uuid& uuid)
    : ContributorData::Impl(classOf(), uuid), lineData(*this, lineDataList()) {}

}  // namespace contributors::kdzero
