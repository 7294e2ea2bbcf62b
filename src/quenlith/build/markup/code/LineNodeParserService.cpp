#include "quenlith/build/markup/code/LineNodeParserService.hpp"

#include <typeinfo>
#include <utility>

#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/line/ParserLists.hpp"
#include "quenlith/build/markup/code/line/parseLineNode.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code {

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
  const line::ParserLists parsers(*parserServicesProvider, typeid(PlainTextNodeParserImpl));
  document->addChild(line::parseLineNode(model, parsers, snippet.text, result));
  return result;
}

}  // namespace quenlith::build::markup::code
