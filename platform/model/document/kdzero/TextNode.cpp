#include "document/kdzero/TextNode.hpp"

#include <limits>
#include <stdexcept>
#include <string>

#include "kd/zero/ModelStorage.hpp"

namespace document::kdzero {

using kd::zero::ModelStorage;

// No element is of this class itself, so none ever ends as one.
const kd::zero::meta::Class TextNode::Impl::kMetaClass(u"document::kdzero::TextNode",
                                                       &Node::Impl::classOf(), 0, nullptr);

void TextNode::Impl::setText(std::u16string_view newText) {
  if (newText.size() > capacity) {
    if (newText.size() > std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("the text of a node holds at most 2^32 - 1 code units");
    }
    void* room = ModelStorage::of(this).allocate(newText.size() * sizeof(char16_t));
    std::u16string_view::traits_type::copy(static_cast<char16_t*>(room), newText.data(),
                                           newText.size());
    freeText();
    setHasParts();
    text = static_cast<char16_t*>(room);
    capacity = static_cast<std::uint32_t>(newText.size());
  } else {
    std::u16string_view::traits_type::move(text, newText.data(), newText.size());
  }
  length = static_cast<std::uint32_t>(newText.size());
}

void TextNode::Impl::freeText() noexcept {
  // A text in a block of its own may stand where own room would begin.
  const bool inOwnRoom = text == ownRoom() && ownRoomBytes() != 0;
  if (text == nullptr || inOwnRoom) return;
  ModelStorage::of(this).deallocate(text, capacity * sizeof(char16_t));
}

}  // namespace document::kdzero
