#include "document/kdzero/TextNode.hpp"

#include <limits>
#include <stdexcept>
#include <string>

#include "kd/zero/ModelStorage.hpp"
#include "kd/zero/Verification.hpp"

namespace document::kdzero {

using kd::zero::ModelStorage;

// An abstract class: no element is of this class itself.
const kd::zero::meta::Class TextNode::Impl::kMetaClass(u"document::kdzero::TextNode",
                                                       &Node::Impl::classOf());

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
  if (text == nullptr || isInOwnBlock()) return;
  ModelStorage::of(this).deallocate(text, capacity * sizeof(char16_t));
}

void TextNode::Impl::verifyParts(kd::zero::Verification& verification) const {
  Node::Impl::verifyParts(verification);
  verification.expect(length <= capacity, "a text is not longer than its space");
  verification.expect((text == nullptr) == (capacity == 0), "a text has space");
  if (text == nullptr || isInOwnBlock()) return;
  verification.expect(mayHaveParts(), "a node with a separate text has parts");
  verification.addBlock(text, capacity * sizeof(char16_t));
}

}  // namespace document::kdzero
