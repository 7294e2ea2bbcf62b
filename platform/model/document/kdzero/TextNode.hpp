#pragma once

#include <cstdint>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "document/kdzero/copyUnits.hpp"

namespace document::kdzero {

/// Handle to a node with text.
class TextNode : public kd::zero::Handle<TextNode, Node> {
 public:
  class Impl;
};

/// A text stands in the node's own block where the node was made with it, else in a block of its
/// own.
class QUENLITH_MODEL_EXPORT TextNode::Impl : public Node::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// The text in UTF-16; valid until it is set again or the node ends.
  std::u16string_view getText() const noexcept { return {text, length}; }
  /// Stores a copy of `newText`, which may be a part of the node's own text. Throws
  /// std::bad_alloc, and std::length_error from 2^32 code units on; the text is then as it was.
  void setText(std::u16string_view newText);

 protected:
  Impl(kd::zero::meta::ClassKey nodeClass, const boost::uuids::uuid& uuid, Parts parts)
      : Node::Impl(nodeClass, uuid, parts) {}
  ~Impl() { freeText(); }

  /// Like `setText`, for a node without a text that was made with room for this one.
  void setFirstText(std::u16string_view firstText) {
    if (firstText.empty() || firstText.size() * sizeof(char16_t) > ownRoomBytes()) {
      setText(firstText);
      return;
    }
    text = ownRoom();
    capacity = static_cast<std::uint32_t>(ownRoomBytes() / sizeof(char16_t));
    copyUnits(text, firstText.data(), firstText.size());
    length = static_cast<std::uint32_t>(firstText.size());
  }

 private:
  static const kd::zero::meta::Class kMetaClass;

  // A class that is derived from this one adds nothing to it.
  char16_t* ownRoom() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
  void freeText() noexcept;

  char16_t* text = nullptr;
  std::uint32_t length = 0;
  std::uint32_t capacity = 0;
};

}  // namespace document::kdzero
