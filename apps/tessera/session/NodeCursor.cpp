#include "tessera/session/NodeCursor.hpp"

#include <boost/uuid/uuid.hpp>

namespace tessera::session {

using namespace document::kdzero;

NodeCursor::NodeCursor(const ParsedSnippet& parsed) : parsed(parsed) {
  if (!parsed.parts.needsText()) return;
  const kd::zero::Model model = kd::zero::Model::create();
  LineNode line = LineNode::Builder(model).createLineNode(boost::uuids::uuid());
  plainText = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid());
  line->getChildrenMutable().add(plainText);
  plainLine = line;
}

std::uint64_t NodeCursor::count() const noexcept {
  return parsed.parts.nodeCount() + parsed.document->getNumberOfChildren();
}

bool NodeCursor::advance() {
  while (passed == inPart) {
    if (!beginPart()) return false;
  }
  if (document != nullptr) {
    current = &document->getChildren()[passed];
  } else {
    plainText->setText(*lines.next());
    current = &plainLine;
  }
  ++passed;
  ++number;
  return true;
}

const Node& NodeCursor::at(std::uint64_t index) {
  while (number <= index) advance();
  return *current;
}

bool NodeCursor::beginPart() {
  const auto& parts = parsed.parts.parts();
  if (begun > parts.size()) return false;
  passed = 0;
  if (begun == parts.size()) {
    document = parsed.document.get();
    inPart = document->getNumberOfChildren();
  } else {
    const NodeParts::Part& part = parts[begun];
    document = part.document.get();
    inPart = part.nodes;
    // The text may be gone when no part needs it.
    if (document == nullptr) {
      const std::u16string_view text = parsed.code.text;
      lines = source::LineCursor(text.substr(part.textBegin), true);
    }
  }
  ++begun;
  return true;
}

}  // namespace tessera::session
