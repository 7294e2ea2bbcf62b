#include "parsers/expectDocument.hpp"

#include "document/kdzero/PlainTextNode.hpp"
#include "harness/Subject.hpp"

namespace bench::parsers {

using document::kdzero::Node;
using document::kdzero::PlainTextNode;

void expectDocument(const document::kdzero::TesseraDocument& document, const Contents& wanted) {
  Contents found;
  std::size_t texts = 0;
  for (const Node& line : document.getChildren()) {
    ++found.lines;
    found.anchors += line->getAnchorId().empty() ? 0 : 1;
    found.failures += line->getParserFailures().size();
    for (const Node& child : line->getChildren()) {
      ++texts;
      found.textUnits += PlainTextNode::castFrom(child)->getText().size();
    }
  }
  expectCount("document, lines", found.lines, wanted.lines);
  expectCount("document, text nodes", texts, wanted.lines);
  expectCount("document, units of text", found.textUnits, wanted.textUnits);
  expectCount("document, anchors", found.anchors, wanted.anchors);
  expectCount("document, failures", found.failures, wanted.failures);
}

}  // namespace bench::parsers
