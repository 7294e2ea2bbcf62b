#pragma once

#include "failures/kdzero/ParserFailure.hpp"
#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/PrimitiveSequence.hpp"

namespace quenlith::oracle {

/// A plain value without a hash.
struct Token {
  int number = 0;

  friend bool operator==(const Token&, const Token&) = default;
};

/// Handle to an element that has one collection of each kind.
class Box : public kd::zero::Handle<Box, kd::zero::ModelElement> {
 public:
  class Impl;
};

class Box::Impl final : public kd::zero::ModelElement::Impl {
 public:
  using Boxes = kd::zero::ElementSequence<Box>;

  static const kd::zero::meta::Class& classOf();
  /// Number of boxes that are not destroyed.
  static std::size_t alive() noexcept;

  explicit Impl(bool isProxy);

  /// Drops the references to the boxes in all collections. Needed for boxes that refer to each
  /// other in a cycle, which collections that do not contain their elements allow.
  void clearCollections() noexcept;

  /// Neither unique nor composite, no opposite.
  Boxes plain;
  /// Unique.
  Boxes unique;
  /// Composite.
  Boxes owned;
  /// Unique and composite.
  Boxes ownedOnce;
  /// Unique and composite; the opposite is the container.
  Boxes kids;
  /// Unique; the opposite is `head`.
  Boxes peers;
  /// Unique; the value of the opposite is not an element.
  Boxes broken;
  kd::zero::PrimitiveSequence<Token> tokens;
  kd::zero::PrimitiveSequence<Token> uniqueTokens;
  kd::zero::PrimitiveSequence<failures::kdzero::ParserFailure> failures;

  /// Borrowed: the box to whose peers this one was added last, or null.
  Impl* head = nullptr;

 private:
  friend struct kd::zero::ElementMaker;

  ~Impl();
  void releaseAll(kd::zero::ModelElement::DeferredReleases& releases) noexcept;
  void verifyParts(kd::zero::Verification& verification) const;
};

/// Returns a new, detached box.
Box makeBox(const kd::zero::Model& model, bool isProxy = false);

}  // namespace quenlith::oracle
