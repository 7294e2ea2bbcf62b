#pragma once

#include <cstdint>
#include <string_view>

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

/// Handle to a node with text.
class TextNode : public kd::zero::Handle<TextNode, Node> {
 public:
  class Impl;
};

class QUENLITH_MODEL_EXPORT TextNode::Impl : public Node::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// The text in UTF-16; valid until it is set again or the node ends.
  std::u16string_view getText() const noexcept { return {text, length}; }
  /// Stores a copy of `newText`, which may be a part of the node's own text. Throws
  /// std::bad_alloc, and std::length_error from 2^32 code units on; the text is then as it was.
  void setText(std::u16string_view newText);

 protected:
  Impl(const kd::zero::meta::Class& nodeClass, const boost::uuids::uuid& uuid)
      : Node::Impl(nodeClass, uuid) {}
  ~Impl() { freeText(); }

 private:
  static const kd::zero::meta::Class kMetaClass;

  void freeText() noexcept;

  char16_t* text = nullptr;
  std::uint32_t length = 0;
  std::uint32_t capacity = 0;
};

}  // namespace document::kdzero
