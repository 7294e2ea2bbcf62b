#include "document/kdzero/Properties.hpp"

#include "document/kdzero/DocumentRoot.hpp"
#include "document/kdzero/Node.hpp"
#include "kd/zero/Containment.hpp"

namespace document::kdzero::properties {

using kd::zero::ModelElement;
using kd::zero::ReferenceCollection;
using kd::zero::meta::Property;

namespace {

ReferenceCollection* topLevelNodesOf(ModelElement::Impl& owner) noexcept {
  return &static_cast<DocumentRoot::Impl&>(owner).getChildrenMutable();
}

ReferenceCollection* childrenOf(ModelElement::Impl& owner) noexcept {
  return &static_cast<Node::Impl&>(owner).getChildrenMutable();
}

ReferenceCollection* contributorDataOf(ModelElement::Impl& owner) noexcept {
  return &static_cast<Node::Impl&>(owner).getContributorDataMutable();
}

Property::Traits containing(std::u16string_view name, const Property* opposite,
                            ReferenceCollection* (*collectionOf)(ModelElement::Impl&) noexcept) {
  return {.name = name,
          .many = true,
          .unique = true,
          .composite = true,
          .opposite = opposite,
          .collectionOf = collectionOf};
}

}  // namespace

const Property& parent() {
  static const Property property({.name = u"parent",
                                  .read = &kd::zero::Containment::read,
                                  .assign = &kd::zero::Containment::assign});
  return property;
}

const Property& topLevelNodes() {
  static const Property property(containing(u"topLevelNodes", &parent(), &topLevelNodesOf));
  return property;
}

const Property& children() {
  static const Property property(containing(u"children", &parent(), &childrenOf));
  return property;
}

const Property& contributorData() {
  static const Property property(containing(u"contributorData", nullptr, &contributorDataOf));
  return property;
}

const Property& parserFailures() {
  static const Property property({.name = u"parserFailures", .many = true, .unique = true});
  return property;
}

}  // namespace document::kdzero::properties
