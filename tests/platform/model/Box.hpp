#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/PrimitiveSequence.hpp"
#include "platform/model/Number.hpp"

namespace quenlith::test {

/// Handle to an element with a collection of every variant that the document classes lack.
class Box : public kd::zero::Handle<Box, kd::zero::ModelElement> {
 public:
  class Impl;
};

/// Whether a box is a placeholder for an element that is not loaded.
enum class Loaded : bool { kNo, kYes };

class Box::Impl final : public kd::zero::ModelElement::Impl {
 public:
  using Boxes = kd::zero::ElementSequence<Box>;

  static const kd::zero::meta::Class& classOf() noexcept;

  /// Neither unique nor composite, without opposite.
  Boxes anything;
  /// Unique, without opposite.
  Boxes distinct;
  /// Unique and composite, without opposite.
  Boxes parts;
  /// Composite, but not unique.
  Boxes repeatableParts;
  /// Unique, with the single-valued opposite `holder`.
  Boxes held;
  /// Unique and composite, with the single-valued opposite `holder`.
  Boxes heldParts;
  /// Unique, with the link to the container as its opposite.
  Boxes linked;
  /// Unique, with the many-valued opposite `admirers`.
  Boxes admired;
  /// Unique, with an opposite whose value is a number.
  Boxes misread;
  /// Unique, with an opposite that refuses to be set.
  Boxes refused;

  kd::zero::PrimitiveSequence<Number> numbers;
  kd::zero::PrimitiveSequence<UnhashedNumber> unhashedNumbers;
  /// Not unique.
  kd::zero::PrimitiveSequence<std::string> words;

  kd::zero::ModelElement::Impl* holder = nullptr;
  std::vector<const kd::zero::ModelElement::Impl*> admirers;
  /// Number of boxes in `admired` of the latest admirer when the opposite of this box was set.
  std::uint32_t admiredWhenTold = 0;
  /// Whether setting the opposite of this box throws.
  bool refusesAdmirers = false;

 private:
  friend struct kd::zero::ElementMaker;

  explicit Impl(Loaded loaded);
  ~Impl();
  void releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept;
  void verifyParts(kd::zero::Verification& verification) const;
};

Box makeBox(const kd::zero::Model& model, Loaded loaded = Loaded::kYes);

/// Number of boxes that are not destroyed.
int liveBoxes();

/// How many times the opposite `holder` of a box was read so far.
int holderReads();

/// What the opposite of `refused` throws, and a box that refuses admirers.
struct Refused {};

}  // namespace quenlith::test
