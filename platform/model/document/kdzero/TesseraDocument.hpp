#pragma once

#include <cassert>
#include <cstdint>
#include <utility>

#include "document/kdzero/DocumentRoot.hpp"
#include "document/kdzero/Node.hpp"
#include "kd/zero/Model.hpp"
#include "quenlith/export/model.hpp"

namespace document::kdzero {

/// A document: the top-level nodes of one source, in order.
///
/// Not thread-safe. Nodes that a handle still refers to outlive the document.
class QUENLITH_MODEL_EXPORT TesseraDocument {
 public:
  /// Creates an empty document with a new model.
  TesseraDocument();
  ~TesseraDocument();
  TesseraDocument(const TesseraDocument&) = delete;
  TesseraDocument& operator=(const TesseraDocument&) = delete;

  kd::zero::Model getModel() const noexcept { return model; }

  /// Appends `node` as the last top-level node, by the rules of `ElementSequence::add`: an empty
  /// handle and a node that is a top-level node already are ignored.
  void addChild(Node node) {
    assertValid(node);
    root->getChildrenMutable().add(std::move(node));
  }
  std::uint64_t getNumberOfChildren() const noexcept { return root->getChildren().size(); }
  /// Returns the top-level node at the zero-based `index`. Throws std::out_of_range.
  Node getChildAt(std::uint64_t index) const { return root->getChildren().at(index); }

  const kd::zero::ElementSequence<Node>& getChildren() const noexcept {
    return root->getChildren();
  }

 private:
  // A parser appends a node when the node is complete. The nodes before it are not checked again,
  // so filling a document takes linear time in debug builds, too.
  static void assertValid([[maybe_unused]] const Node& node) {
    assert(!node || node->getModel().verify(node));
  }

  kd::zero::Model model;
  DocumentRoot root;
};

}  // namespace document::kdzero
