#include "quenlith/build/markup/code/LineNodeParserService.hpp"

#include <boost/uuid/uuid.hpp>
#include <typeinfo>
#include <utility>

#include "document/kdzero/LineNode.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/line/ParserLists.hpp"
#include "quenlith/build/markup/code/line/parseMarkedLine.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code {

using document::kdzero::LineNode;
using document::kdzero::TesseraDocument;
using quenlith::shared::logging::trace;

LineNodeParserService::LineNodeParserService(
    const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider)
    : parserServicesProvider(parserServicesProvider) {}

LineNodeParserService::~LineNodeParserService() = default;

ParseResult LineNodeParserService::parseLine(std::shared_ptr<TesseraDocument> document,
                                             const Snippet& snippet, ParseResult result) {
  trace("In LineNodeParserService");
  const kd::zero::Model model = document->getModel();
  LineNode lineNode = LineNode::Builder(model).createLineNode(boost::uuids::uuid{});
  const line::ParserLists parsers(*parserServicesProvider, typeid(PlainTextNodeParserImpl));
  const line::ScannedLine line(snippet.text);
  if (line.isPlainText()) {
    lineNode->getChildrenMutable().add(parsers.parsePlainText(model, line.text()));
  } else {
    line::parseMarkedLine(model, lineNode, parsers, line, result);
  }
  document->addChild(std::move(lineNode));
  return result;
}

}  // namespace quenlith::build::markup::code
