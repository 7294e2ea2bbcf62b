#include "document/kdzero/Properties.hpp"

#include "document/kdzero/DocumentRoot.hpp"
#include "document/kdzero/Node.hpp"
#include "document/kdzero/keys.hpp"
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

const Property kParent({.name = u"parent",
                        .container = true,
                        .read = &kd::zero::Containment::read,
                        .assign = &kd::zero::Containment::assign});
const Property kTopLevelNodes(containing(u"topLevelNodes", &kParent, &topLevelNodesOf));
const Property kChildren(keys::kChildren, containing(u"children", &kParent, &childrenOf));
const Property kContributorData(containing(u"contributorData", nullptr, &contributorDataOf));
const Property kParserFailures({.name = u"parserFailures", .many = true, .unique = true});

}  // namespace document::kdzero::properties
