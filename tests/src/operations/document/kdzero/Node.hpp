#pragma once

#include <boost/uuid/uuid.hpp>

#include "contributors/kdzero/NodeContributorData.hpp"
#include "failures/kdzero/ParserFailure.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/Model.hpp"

namespace document::kdzero {

class Node {
 public:
  class Impl;
  explicit operator bool() const;
  Impl* get() const;
  Impl* operator->() const;
};

class Node::Impl {
 public:
  const kd::zero::ElementSequence<Node>& getChildren() const;
  kd::zero::ElementSequence<Node>& getChildrenMutable();
  kd::zero::PrimitiveSequence<failures::kdzero::ParserFailure>& getParserFailuresMutable();
  kd::zero::ElementSequence<contributors::kdzero::NodeContributorData>& getContributorDataMutable();
  void setAnchorId(const fl::i18n::ustring& anchorId);
};

/// A handle of a kind that is derived from `Node`, to an object of the class `Derived`.
template <class Derived>
class NodeHandle : public Node {
 public:
  Derived* get() const;
  Derived* operator->() const;
};

}  // namespace document::kdzero
