#include "oracle/model/Box.hpp"

#include "kd/zero/Containment.hpp"

namespace quenlith::oracle {

namespace {

using kd::zero::Containment;
using kd::zero::ModelElement;
using kd::zero::ReferenceCollection;
using kd::zero::meta::Property;
using kd::zero::meta::Type;

Box::Impl& boxOf(ModelElement::Impl& element) {
  return static_cast<Box::Impl&>(element);
}

Property::Traits many(std::u16string_view name, bool unique, bool composite) {
  Property::Traits traits;
  traits.name = name;
  traits.many = true;
  traits.unique = unique;
  traits.composite = composite;
  return traits;
}

const Property& plain() {
  static const Property property(many(u"plain", false, false));
  return property;
}

const Property& unique() {
  static const Property property(many(u"unique", true, false));
  return property;
}

Property::Traits composite(std::u16string_view name, bool isUnique,
                           ReferenceCollection* (*collectionOf)(ModelElement::Impl&) noexcept) {
  Property::Traits traits = many(name, isUnique, true);
  traits.collectionOf = collectionOf;
  return traits;
}

const Property& owned() {
  static const Property property(
      composite(u"owned", false, [](ModelElement::Impl& owner) noexcept -> ReferenceCollection* {
        return &boxOf(owner).owned;
      }));
  return property;
}

const Property& ownedOnce() {
  static const Property property(
      composite(u"ownedOnce", true, [](ModelElement::Impl& owner) noexcept -> ReferenceCollection* {
        return &boxOf(owner).ownedOnce;
      }));
  return property;
}

Property::Traits single(std::u16string_view name,
                        kd::zero::Value (*read)(const ModelElement::Impl&),
                        void (*assign)(ModelElement::Impl&, ModelElement::Impl&, const Property&)) {
  Property::Traits traits;
  traits.name = name;
  traits.read = read;
  traits.assign = assign;
  return traits;
}

const Property& parent() {
  static const Property property([] {
    auto traits = single(u"parent", &Containment::read, &Containment::assign);
    traits.container = true;
    return traits;
  }());
  return property;
}

const Property& kids() {
  static const Property property([] {
    auto traits =
        composite(u"kids", true, [](ModelElement::Impl& owner) noexcept -> ReferenceCollection* {
          return &boxOf(owner).kids;
        });
    traits.opposite = &parent();
    return traits;
  }());
  return property;
}

const Property& head() {
  static const Property property(single(
      u"head",
      [](const ModelElement::Impl& element) {
        return kd::zero::Value(static_cast<const Box::Impl&>(element).head);
      },
      [](ModelElement::Impl& element, ModelElement::Impl& owner, const Property&) {
        boxOf(element).head = &boxOf(owner);
      }));
  return property;
}

const Property& peers() {
  static const Property property([] {
    auto traits = many(u"peers", true, false);
    traits.opposite = &head();
    return traits;
  }());
  return property;
}

const Property& number() {
  static const Property property(single(
      u"number",
      [](const ModelElement::Impl&) {
        static const Type::Impl type(u"oracle.Number");
        return kd::zero::Value(type);
      },
      [](ModelElement::Impl&, ModelElement::Impl&, const Property&) {}));
  return property;
}

const Property& broken() {
  static const Property property([] {
    auto traits = many(u"broken", true, false);
    traits.opposite = &number();
    return traits;
  }());
  return property;
}

const Property& tokens() {
  static const Property property(many(u"tokens", false, false));
  return property;
}

const Property& uniqueTokens() {
  static const Property property(many(u"uniqueTokens", true, false));
  return property;
}

const Property& failureList() {
  static const Property property(many(u"failures", true, false));
  return property;
}

std::size_t aliveBoxes = 0;

}  // namespace

std::size_t Box::Impl::alive() noexcept {
  return aliveBoxes;
}

const kd::zero::meta::Class& Box::Impl::classOf() {
  static const auto description =
      kd::zero::ElementMaker::describe<Impl>(u"oracle.Box", kd::zero::meta::Class::modelElement());
  return description;
}

Box::Impl::Impl(bool isProxy)
    : kd::zero::ModelElement::Impl(classOf()),
      plain(*this, oracle::plain()),
      unique(*this, oracle::unique()),
      owned(*this, oracle::owned()),
      ownedOnce(*this, oracle::ownedOnce()),
      kids(*this, oracle::kids()),
      peers(*this, oracle::peers()),
      broken(*this, oracle::broken()),
      tokens(*this, oracle::tokens()),
      uniqueTokens(*this, oracle::uniqueTokens()),
      failures(*this, failureList()) {
  if (isProxy) setProxy();
  ++aliveBoxes;
}

Box::Impl::~Impl() {
  --aliveBoxes;
}

void Box::Impl::clearCollections() noexcept {
  kd::zero::ModelElement::DeferredReleases releases;
  releaseAll(releases);
}

void Box::Impl::releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept {
  for (Boxes* boxes : {&plain, &unique, &owned, &ownedOnce, &kids, &peers, &broken}) {
    boxes->releaseAll(releases);
  }
}

void Box::Impl::verifyParts(kd::zero::Verification& verification) const {
  for (const Boxes* boxes : {&plain, &unique, &owned, &ownedOnce, &kids, &peers, &broken}) {
    boxes->verify(*this, verification);
  }
  tokens.verify(*this, verification);
  uniqueTokens.verify(*this, verification);
  failures.verify(*this, verification);
}

Box makeBox(const kd::zero::Model& model, bool isProxy) {
  return kd::zero::ElementMaker::make<Box>(model.storage(), isProxy);
}

}  // namespace quenlith::oracle
