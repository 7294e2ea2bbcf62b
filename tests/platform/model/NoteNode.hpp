#pragma once

#include <string>

#include "document/kdzero/Node.hpp"
#include "fl/i18n/ustring.hpp"
#include "kd/zero/ElementBuilder.hpp"

namespace example {

/// Handle to a node with a note: a kind of node that a bundle adds.
class NoteNode : public kd::zero::Handle<NoteNode, document::kdzero::Node> {
 public:
  class Impl;
  class Builder;
};

class NoteNode::Impl final : public document::kdzero::Node::Impl {
 public:
  static const kd::zero::meta::Class& classOf() noexcept {
    static const kd::zero::meta::Class metaClass = kd::zero::ElementMaker::describe<Impl>(
        u"example::NoteNode", document::kdzero::Node::Impl::classOf());
    return metaClass;
  }

  const fl::i18n::ustring& getNote() const noexcept { return note; }
  void setNote(const fl::i18n::ustring& newNote) { note = newNote; }

 private:
  friend struct kd::zero::ElementMaker;

  explicit Impl(const boost::uuids::uuid& uuid) : document::kdzero::Node::Impl(classOf(), uuid) {}
  ~Impl() = default;

  fl::i18n::ustring note;
};

class NoteNode::Builder : public kd::zero::ElementBuilder {
 public:
  using ElementBuilder::ElementBuilder;

  NoteNode createNoteNode(const boost::uuids::uuid& uuid) const { return make<NoteNode>(uuid); }
};

}  // namespace example
