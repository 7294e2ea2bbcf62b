#pragma once

#include "failures/kdzero/ParserFailure.hpp"
#include "kd/zero/ElementMaker.hpp"
#include "kd/zero/ElementSequence.hpp"
#include "kd/zero/Model.hpp"
#include "kd/zero/PrimitiveSequence.hpp"

namespace quenlith::oracle {

/// A plain value that nobody can hash.
struct Token {
  int number = 0;

  friend bool operator==(const Token&, const Token&) = default;
};

/// Handle to an element that has one collection of every sort.
class Box : public kd::zero::Handle<Box, kd::zero::ModelElement> {
 public:
  class Impl;
};

class Box::Impl final : public kd::zero::ModelElement::Impl {
 public:
  using Boxes = kd::zero::ElementSequence<Box>;

  static const kd::zero::meta::Class& classOf();
  /// Number of boxes that have not ended.
  static std::size_t alive() noexcept;

  explicit Impl(bool isProxy);

  /// Lets go of all boxes in all collections. Boxes that hold each other in a circle, which the
  /// collections that contain nothing allow, never end without it.
  void letGo() noexcept;

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
  /// Unique; the opposite holds something that is no element.
  Boxes broken;
  kd::zero::PrimitiveSequence<Token> tokens;
  kd::zero::PrimitiveSequence<Token> uniqueTokens;
  kd::zero::PrimitiveSequence<failures::kdzero::ParserFailure> failures;

  /// Borrowed: the box among whose peers this one was put last, or null.
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
