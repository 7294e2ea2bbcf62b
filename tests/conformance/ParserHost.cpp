#include "conformance/ParserHost.hpp"

#include "oracle/support/readDocument.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"

namespace quenlith::conformance {

using document::kdzero::TesseraDocument;

AnswerRule takes(const ustring& element) {
  AnswerRule rule;
  rule.kind = AnswerRule::Kind::kElement;
  rule.element = element;
  return rule;
}

Snippet snippetOf(const ustring& text, std::uint8_t kind, const ustring& block) {
  Snippet snippet;
  snippet.text = text;
  snippet.type = {0, kind};
  snippet.auxiliaryText = block;
  return snippet;
}

ParserHost::ParserHost(const WorldPlan& plan)
    : world(plan),
      recorder(world),
      provider(std::make_shared<oracle::WorldProvider>(world)),
      appendix(std::make_shared<oracle::WorldAppendix>(world)),
      document(std::make_shared<TesseraDocument>()) {}

ParseResult ParserHost::parseLine(const ustring& text, const ParseResult& given) {
  build::markup::code::LineNodeParserService service(provider);
  return service.parseLine(document, snippetOf(text), given);
}

NodeRecord ParserHost::onlyLine(const ustring& text) {
  document = std::make_shared<TesseraDocument>();
  parseLine(text);
  return nodes().at(0);
}

std::vector<NodeRecord> ParserHost::nodes() const {
  return oracle::readDocument(*document);
}

std::vector<std::string> ParserHost::takeMessages() {
  const std::string prefix = "log ";
  std::vector<std::string> messages;
  for (const std::string& event : takeTrace()) {
    if (event.rfind(prefix, 0) == 0) messages.push_back(event.substr(prefix.size()));
  }
  return messages;
}

std::vector<std::string> ParserHost::takeTrace() {
  std::vector<std::string> trace = world.getTrace();
  world.clearTrace();
  return trace;
}

std::vector<ustring> childTexts(const NodeRecord& node) {
  std::vector<ustring> texts;
  for (const NodeRecord& child : node.children) texts.push_back(child.text);
  return texts;
}

}  // namespace quenlith::conformance
