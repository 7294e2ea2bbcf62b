#include "platform/model/Box.hpp"

#include "kd/zero/Containment.hpp"
#include "kd/zero/Value.hpp"
#include "kd/zero/meta/Class.hpp"
#include "kd/zero/meta/Property.hpp"

namespace quenlith::test {

using kd::zero::Containment;
using kd::zero::ElementMaker;
using kd::zero::ModelElement;
using kd::zero::ReferenceCollection;
using kd::zero::Value;
using kd::zero::meta::Property;
using kd::zero::meta::Type;

namespace {

int boxes = 0;
int reads = 0;

Value readHolder(const ModelElement::Impl& element) {
  ++reads;
  return Value(static_cast<const Box::Impl&>(element).holder);
}

void assignHolder(ModelElement::Impl& element, ModelElement::Impl& owner, const Property&) {
  static_cast<Box::Impl&>(element).holder = &owner;
}

void addAdmirer(ModelElement::Impl& element, ModelElement::Impl& owner, const Property&) {
  auto& admired = static_cast<Box::Impl&>(element);
  if (admired.refusesAdmirers) throw Refused();
  admired.admirers.push_back(&owner);
  const Box::Impl::Boxes& all = static_cast<const Box::Impl&>(owner).admired;
  admired.admiredWhenTold = static_cast<std::uint32_t>(all.size());
}

Value readNumber(const ModelElement::Impl&) {
  static const Type::Impl type(u"quenlith::test::Weight");
  return Value(type);
}

void refuse(ModelElement::Impl&, ModelElement::Impl&, const Property&) {
  throw Refused();
}

Value readNothing(const ModelElement::Impl&) {
  return Value(nullptr);
}

const Property& holderProperty() {
  static const Property property({.name = u"holder", .read = &readHolder, .assign = &assignHolder});
  return property;
}

const Property& containerLink() {
  static const Property property({.name = u"container",
                                  .container = true,
                                  .read = &Containment::read,
                                  .assign = &Containment::assign});
  return property;
}

const Property& admirersProperty() {
  static const Property property({.name = u"admirers", .many = true, .assign = &addAdmirer});
  return property;
}

const Property& weightProperty() {
  static const Property property({.name = u"weight", .read = &readNumber, .assign = &assignHolder});
  return property;
}

const Property& refuserProperty() {
  static const Property property({.name = u"refuser", .read = &readNothing, .assign = &refuse});
  return property;
}

enum class Unique : bool { kNo, kYes };
enum class Composite : bool { kNo, kYes };
using CollectionOf = ReferenceCollection* (*)(ModelElement::Impl&) noexcept;

template <Box::Impl::Boxes Box::Impl::*Member>
ReferenceCollection* memberOf(ModelElement::Impl& owner) noexcept {
  return &(static_cast<Box::Impl&>(owner).*Member);
}

/// The property of the collection `Member`.
template <Box::Impl::Boxes Box::Impl::*Member>
const Property& collection(Unique unique, Composite composite, const Property* opposite = nullptr) {
  static const Property property({.name = u"boxes",
                                  .many = true,
                                  .unique = unique == Unique::kYes,
                                  .composite = composite == Composite::kYes,
                                  .opposite = opposite,
                                  .collectionOf = &memberOf<Member>});
  return property;
}

const Property& numbersProperty() {
  static const Property property({.name = u"numbers", .many = true, .unique = true});
  return property;
}

const Property& wordsProperty() {
  static const Property property({.name = u"words", .many = true});
  return property;
}

}  // namespace

const kd::zero::meta::Class& Box::Impl::classOf() noexcept {
  static const kd::zero::meta::Class metaClass =
      ElementMaker::describe<Impl>(u"quenlith::test::Box", kd::zero::meta::Class::modelElement());
  return metaClass;
}

Box::Impl::Impl(Loaded loaded)
    : kd::zero::ModelElement::Impl(classOf()),
      anything(*this, collection<&Impl::anything>(Unique::kNo, Composite::kNo)),
      distinct(*this, collection<&Impl::distinct>(Unique::kYes, Composite::kNo)),
      parts(*this, collection<&Impl::parts>(Unique::kYes, Composite::kYes)),
      repeatableParts(*this, collection<&Impl::repeatableParts>(Unique::kNo, Composite::kYes)),
      held(*this, collection<&Impl::held>(Unique::kYes, Composite::kNo, &holderProperty())),
      heldParts(*this,
                collection<&Impl::heldParts>(Unique::kYes, Composite::kYes, &holderProperty())),
      linked(*this, collection<&Impl::linked>(Unique::kYes, Composite::kNo, &containerLink())),
      admired(*this, collection<&Impl::admired>(Unique::kYes, Composite::kNo, &admirersProperty())),
      misread(*this, collection<&Impl::misread>(Unique::kYes, Composite::kNo, &weightProperty())),
      refused(*this, collection<&Impl::refused>(Unique::kYes, Composite::kNo, &refuserProperty())),
      numbers(*this, numbersProperty()),
      unhashedNumbers(*this, numbersProperty()),
      words(*this, wordsProperty()) {
  if (loaded == Loaded::kNo) setProxy();
  ++boxes;
}

Box::Impl::~Impl() {
  --boxes;
}

void Box::Impl::releaseAll(ModelElement::DeferredReleases& releases) noexcept {
  for (Boxes* each : {&anything, &distinct, &parts, &repeatableParts, &held, &heldParts, &linked,
                      &admired, &misread, &refused}) {
    each->releaseAll(releases);
  }
}

void Box::Impl::verifyParts(kd::zero::Verification& verification) const {
  for (const Boxes* each : {&anything, &distinct, &parts, &repeatableParts, &held, &heldParts,
                            &linked, &admired, &misread, &refused}) {
    each->verify(*this, verification);
  }
  numbers.verify(*this, verification);
  unhashedNumbers.verify(*this, verification);
  words.verify(*this, verification);
}

Box makeBox(const kd::zero::Model& model, Loaded loaded) {
  return ElementMaker::make<Box>(model.storage(), loaded);
}

int liveBoxes() {
  return boxes;
}

int holderReads() {
  return reads;
}

}  // namespace quenlith::test
