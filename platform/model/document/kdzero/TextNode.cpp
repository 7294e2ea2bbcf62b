#include "document/kdzero/TextNode.hpp"

#include <limits>
#include <stdexcept>
#include <string>

#include "kd/zero/ModelStorage.hpp"

namespace document::kdzero {

using kd::zero::ModelStorage;

// An abstract class: no element of it is ever destroyed.
const kd::zero::meta::Class TextNode::Impl::kMetaClass(u"document::kdzero::TextNode",
                                                       &Node::Impl::classOf(), 0, nullptr);

void TextNode::Impl::replaceText(std::u16string_view newText) {
  if (newText.size() > capacity) {
    if (newText.size() > std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("the text of a node holds at most 2^32 - 1 code units");
    }
    void* block = ModelStorage::of(this).allocate(newText.size() * sizeof(char16_t));
    std::u16string_view::traits_type::copy(static_cast<char16_t*>(block), newText.data(),
                                           newText.size());
    freeText();
    setHasParts();
    text = static_cast<char16_t*>(block);
    capacity = static_cast<std::uint32_t>(newText.size());
  } else {
    std::u16string_view::traits_type::move(text, newText.data(), newText.size());
  }
  length = static_cast<std::uint32_t>(newText.size());
}

void TextNode::Impl::freeText() noexcept {
  // The address alone does not tell: a separate block may begin directly after the node.
  const bool inOwnBlock = text == afterNode() && extraBytes() != 0;
  if (text == nullptr || inOwnBlock) return;
  ModelStorage::of(this).deallocate(text, capacity * sizeof(char16_t));
}

}  // namespace document::kdzero
