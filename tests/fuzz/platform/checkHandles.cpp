#include <algorithm>
#include <array>
#include <boost/uuid/nil_generator.hpp>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "foundation/core/except/Exception.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "kd0/messages/ElementOfAnotherModel.hpp"
#include "kd0/messages/ElementWithinItself.hpp"

namespace quenlith::fuzz {

using document::kdzero::LineNode;
using document::kdzero::LiveAppIntegratedInlineNode;
using document::kdzero::Node;
using document::kdzero::PlainTextNode;
using document::kdzero::TesseraDocument;
using failures::kdzero::ParserFailure;
using fl::i18n::ustring;
using kd::zero::Model;

namespace {

template <class Message>
using Raised = foundation::core::except::Exception<Message, std::exception>;

enum class Kind { kLine, kText, kTask };
enum class Added { kYes, kIgnored, kForeign, kCycle };

/// What a node must have. Exists exactly as long as its node: the shared pointers to it correspond
/// to the references to the node.
struct Shadow : std::enable_shared_from_this<Shadow> {
  Shadow() = default;
  ~Shadow() {
    for (const auto& child : children) child->container = nullptr;
  }
  Shadow(const Shadow&) = delete;
  Shadow& operator=(const Shadow&) = delete;

  bool isWithin(const Shadow& other) const {
    return this == &other || (container != nullptr && container->isWithin(other));
  }

  Kind kind = Kind::kLine;
  const Node::Impl* node = nullptr;
  Model model;
  ustring text;
  ustring anchor;
  std::vector<ustring> failures;
  std::vector<std::shared_ptr<Shadow>> children;
  /// The node, or the root of the document, that contains it; or null.
  Shadow* container = nullptr;
};

using ShadowPointer = std::shared_ptr<Shadow>;

/// A handle and what it must refer to.
struct Slot {
  Node handle;
  ShadowPointer shadow;
};

struct Document {
  std::unique_ptr<TesseraDocument> real;
  /// Only its children count; null without a document.
  ShadowPointer root;
};

Added addTo(const ShadowPointer& owner, const ShadowPointer& element) {
  if (!element) return Added::kIgnored;
  if (!(element->model == owner->model)) return Added::kForeign;
  if (element->container == owner.get()) return Added::kIgnored;
  if (owner->isWithin(*element)) return Added::kCycle;
  if (element->container != nullptr) std::erase(element->container->children, element);
  owner->children.push_back(element);
  element->container = owner.get();
  return Added::kYes;
}

template <class Add>
Added outcomeOf(const Add& add, std::size_t sizeBefore, const auto& sizeAfter) {
  try {
    add();
  } catch (const Raised<kd0::messages::ElementOfAnotherModel>&) {
    return Added::kForeign;
  } catch (const Raised<kd0::messages::ElementWithinItself>&) {
    return Added::kCycle;
  }
  return sizeAfter() == sizeBefore ? Added::kIgnored : Added::kYes;
}

/// Handles and documents, and the operations on them.
class Handles {
 public:
  explicit Handles(Choices& choices) : choices(choices) {
    for (Document& document : documents) open(document);
  }

  void step() {
    const std::size_t operation = choices.below(16);
    Slot& slot = choices.pick(slots);
    Slot& other = choices.pick(slots);
    Document& document = choices.pick(documents);
    switch (operation) {
      case 0:
        return create(slot, document);
      case 1:
        return copy(slot, other);
      case 2:
        return move(slot, other);
      case 3:
        return swap(slot, other);
      case 4:
        return clear(slot);
      case 5:
        return addChild(slot, other);
      case 6:
        return addTop(document, slot);
      case 7:
        return takeChild(slot, other);
      case 8:
        return takeTop(document, slot);
      case 9:
        return takeParent(slot, other);
      case 10:
        return setText(slot);
      case 11:
        return setPartOfText(slot);
      case 12:
        return setAnchor(slot);
      case 13:
        return addFailure(slot);
      case 14:
        return cast(slot);
      default:
        return replace(document);
    }
  }

  void check() const {
    for (const Slot& slot : slots) {
      require(static_cast<bool>(slot.handle) == static_cast<bool>(slot.shadow),
              "a handle is empty when it must be");
      if (!slot.handle) continue;
      checkNode(slot.handle, *slot.shadow);
      require(slot.handle->getModel().verify(slot.handle), "a node is intact");
    }
    for (const Document& document : documents) {
      if (document.real) checkDocument(document);
    }
  }

 private:
  static void open(Document& document) {
    document.real = std::make_unique<TesseraDocument>();
    document.root = std::make_shared<Shadow>();
    document.root->model = document.real->getModel();
  }

  static void replace(Document& document) {
    const bool hadOne = document.real != nullptr;
    document.real.reset();
    document.root.reset();
    if (!hadOne) open(document);
  }

  void create(Slot& slot, const Document& document) {
    const Model model = document.real ? document.real->getModel() : Model::create();
    const auto nil = boost::uuids::nil_uuid();
    auto shadow = std::make_shared<Shadow>();
    shadow->kind = static_cast<Kind>(choices.below(3));
    if (shadow->kind == Kind::kLine) {
      slot.handle = LineNode::Builder(model).createLineNode(nil);
    } else if (shadow->kind == Kind::kText) {
      slot.handle = PlainTextNode::Builder(model).createPlainTextNode(nil);
    } else {
      slot.handle =
          LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(nil);
    }
    shadow->node = slot.handle.get();
    shadow->model = model;
    slot.shadow = std::move(shadow);
  }

  static void copy(Slot& to, const Slot& from) {
    to.handle = from.handle;
    to.shadow = from.shadow;
  }

  static void move(Slot& to, Slot& from) {
    to.handle = std::move(from.handle);
    if (&to == &from) return;
    to.shadow = std::exchange(from.shadow, nullptr);
  }

  static void swap(Slot& left, Slot& right) {
    std::swap(left.handle, right.handle);
    std::swap(left.shadow, right.shadow);
  }

  static void clear(Slot& slot) {
    slot.handle = Node();
    slot.shadow = nullptr;
  }

  static void addChild(const Slot& owner, const Slot& element) {
    if (!owner.handle) return;
    auto& children = owner.handle->getChildrenMutable();
    const Added real = outcomeOf([&] { children.add(element.handle); }, children.size(),
                                 [&] { return children.size(); });
    require(real == addTo(owner.shadow, element.shadow), "a child is added, ignored or refused");
  }

  static void addTop(const Document& document, const Slot& element) {
    if (!document.real) return;
    const Added real = outcomeOf([&] { document.real->addChild(element.handle); },
                                 document.real->getNumberOfChildren(),
                                 [&] { return document.real->getNumberOfChildren(); });
    require(real == addTo(document.root, element.shadow), "a node is added, ignored or refused");
  }

  // The child may be taken into the handle of its parent, which then may be destroyed.
  void takeChild(const Slot& from, Slot& to) {
    if (!from.handle || from.handle->getChildren().size() == 0) return;
    const std::size_t index = choices.below(from.shadow->children.size());
    to.handle = from.handle->getChildren()[index];
    to.shadow = ShadowPointer(from.shadow->children[index]);
  }

  void takeTop(const Document& document, Slot& to) {
    if (!document.real || document.root->children.empty()) return;
    const std::size_t index = choices.below(document.root->children.size());
    to.handle = document.real->getChildAt(index);
    to.shadow = document.root->children[index];
  }

  static void takeParent(const Slot& from, Slot& to) {
    if (!from.handle) return;
    to.handle = from.handle->getParent();
    to.shadow = hasParent(*from.shadow) ? from.shadow->container->shared_from_this() : nullptr;
  }

  ustring anyText() {
    constexpr std::array<std::size_t, 6> kLengths = {0, 1, 7, 40, 250, 600};
    return ustring(choices.pick(kLengths), static_cast<char16_t>(u'a' + choices.below(8)));
  }

  void setText(const Slot& slot) {
    if (!slot.shadow || slot.shadow->kind != Kind::kText) return;
    slot.shadow->text = anyText();
    PlainTextNode::castFrom(slot.handle)->setText(slot.shadow->text);
  }

  void setPartOfText(const Slot& slot) {
    if (!slot.shadow || slot.shadow->kind != Kind::kText) return;
    const PlainTextNode node = PlainTextNode::castFrom(slot.handle);
    const std::u16string_view text = node->getText();
    const std::size_t begin = std::min<std::size_t>(choices.byte(), text.size());
    const std::size_t length = choices.byte();
    node->setText(text.substr(begin, length));
    slot.shadow->text = slot.shadow->text.substr(begin, length);
  }

  void setAnchor(const Slot& slot) {
    if (!slot.shadow) return;
    slot.shadow->anchor = anyText();
    slot.handle->setAnchorId(slot.shadow->anchor);
  }

  void addFailure(const Slot& slot) {
    if (!slot.shadow) return;
    const ustring id = anyText();
    slot.handle->getParserFailuresMutable().add(ParserFailure().setFailureId(id));
    auto& failures = slot.shadow->failures;
    if (std::ranges::find(failures, id) == failures.end()) failures.push_back(id);
  }

  static void cast(const Slot& slot) {
    if (!slot.shadow) return;
    const Kind kind = slot.shadow->kind;
    require(static_cast<bool>(LineNode::castFrom(slot.handle)) == (kind == Kind::kLine) &&
                static_cast<bool>(PlainTextNode::castFrom(slot.handle)) == (kind == Kind::kText) &&
                Node::castFrom(slot.handle) == slot.handle,
            "a handle is cast to the kind of its node only");
  }

  // A top-level node has a container, but no parent.
  static bool hasParent(const Shadow& child) {
    return child.container != nullptr && child.container->node != nullptr;
  }

  static void checkNode(const Node& node, const Shadow& shadow) {
    require(node.get() == shadow.node, "it is the same node");
    require(node->getParent().get() == (hasParent(shadow) ? shadow.container->node : nullptr),
            "a node knows its parent");
    if (shadow.kind == Kind::kText) {
      require(PlainTextNode::castFrom(node)->getText() == shadow.text, "a text is kept");
    }
    require(node->getAnchorId() == shadow.anchor, "an anchor is kept");
    require(std::ranges::equal(node->getParserFailures(), shadow.failures, {},
                               &ParserFailure::getFailureId),
            "failures are kept");
    const auto& children = node->getChildren();
    require(children.size() == shadow.children.size(), "it has as many children");
    for (std::size_t i = 0; i < children.size(); ++i) checkNode(children[i], *shadow.children[i]);
  }

  static void checkDocument(const Document& document) {
    const auto& nodes = document.real->getChildren();
    require(nodes.size() == document.root->children.size(), "it has as many nodes");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      checkNode(nodes[i], *document.root->children[i]);
    }
    const char* broken = document.real->getModel().findBrokenInvariant();
    require(broken == nullptr, broken);
  }

  Choices& choices;
  std::array<Slot, 6> slots;
  std::array<Document, 2> documents;
};

}  // namespace

void checkHandles(std::string_view input) {
  Choices choices(input);
  Handles handles(choices);
  while (!choices.atEnd()) {
    handles.step();
    handles.check();
  }
}

}  // namespace quenlith::fuzz
