#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "document/kdzero/copyCodeUnits.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/ModelStorage.hpp"

namespace document::kdzero {

/// Handle to a node with text.
class TextNode : public kd::zero::Handle<TextNode, Node> {
 public:
  class Impl;
};

/// The text is stored in the block of the node if it is set directly after the node was created,
/// otherwise in a separate block.
class QUENLITH_MODEL_EXPORT TextNode::Impl : public Node::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept { return kMetaClass; }

  /// The text in UTF-16; valid until it is set again or the node is destroyed.
  std::u16string_view getText() const noexcept { return {text, length}; }
  /// Stores a copy of `newText`. Throws std::bad_alloc, and std::length_error for 2^32 code units
  /// or more; the text is unchanged in that case.
  void setText(const ustring& newText) { assignText(newText); }
  /// Like it, but `newText` may be a part of the node's own text. A template, so that an argument
  /// that converts to both types, such as a literal, is not ambiguous.
  template <std::same_as<std::u16string_view> View>
  void setText(View newText) {
    assignText(newText);
  }

 protected:
  Impl(kd::zero::meta::ClassKey nodeClass, const boost::uuids::uuid& uuid,
       Parts parts = Parts::kSome)
      : Node::Impl(nodeClass, uuid, parts) {}
  ~Impl() { freeText(); }

  void verifyParts(kd::zero::Verification& verification) const;

 private:
  static const kd::zero::meta::Class kMetaClass;

  void assignText(std::u16string_view newText) {
    if (newText.empty()) {
      length = 0;
    } else if (!placeAfterNode(newText)) {
      replaceText(newText);
    }
  }
  /// Stores the first text, which is not empty, in the block of the node, if that block is the last
  /// one of its chunk and the chunk has space left; otherwise does nothing and returns false.
  ///
  /// A parser sets the text of a node before it allocates anything else, so nearly every text is
  /// stored this way: without a separate block, and in the cache lines after its node. An object of
  /// a derived class with additional members is larger than this object, so its block does not end
  /// here and its text is never stored this way.
  bool placeAfterNode(std::u16string_view newText) noexcept;
  void replaceText(std::u16string_view newText);
  void freeText() noexcept;
  char16_t* afterNode() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
  bool isInOwnBlock() const noexcept {
    // The address alone does not tell: a separate block may begin directly after the node.
    return text == reinterpret_cast<const char16_t*>(this + 1) && extraBytes() != 0;
  }

  char16_t* text = nullptr;
  std::uint32_t length = 0;
  std::uint32_t capacity = 0;
};

inline bool TextNode::Impl::placeAfterNode(std::u16string_view newText) noexcept {
  constexpr std::size_t kLargest =
      (kd::zero::ModelStorage::kLargestBlock - sizeof(Impl)) / sizeof(char16_t);
  if (text != nullptr || newText.size() > kLargest) return false;
  if (!extendBlock(afterNode(), newText.size() * sizeof(char16_t))) return false;
  text = afterNode();
  length = static_cast<std::uint32_t>(newText.size());
  capacity = static_cast<std::uint32_t>(extraBytes() / sizeof(char16_t));
  copyCodeUnits(text, newText.data(), newText.size());
  return true;
}

}  // namespace document::kdzero
