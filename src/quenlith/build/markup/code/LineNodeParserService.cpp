#include "quenlith/build/markup/code/LineNodeParserService.hpp"

#include <boost/uuid/uuid.hpp>
#include <utility>

#include "document/kdzero/LineNode.hpp"
#include "quenlith/build/markup/code/line/LineContent.hpp"
#include "quenlith/build/markup/code/line/ParserLists.hpp"
#include "quenlith/build/markup/code/line/parseLineNode.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code {

using document::kdzero::LineNode;
using document::kdzero::TesseraDocument;
using quenlith::shared::logging::trace;

LineNodeParserService::LineNodeParserService(
    const std::shared_ptr<services::ParserServicesProvider>& provider)
    : parserServicesProvider(provider) {}

LineNodeParserService::~LineNodeParserService() = default;

ParseResult LineNodeParserService::parseLine(std::shared_ptr<TesseraDocument> document,
                                             const Snippet& snippet, ParseResult result) {
  trace("In LineNodeParserService");
  const kd::zero::Model model = document->getModel();
  const line::ParserLists parsers(*parserServicesProvider);

  // Most lines are plain, and what becomes of such a line is known.
  if (line::isSurelyPlain(snippet.text) && parsers.makesPlainTextNodes()) {
    const LineNode::Builder builder(model);
    document->addChild(builder.createLineNode(boost::uuids::uuid{}, snippet.text));
  } else {
    document->addChild(line::parseLineNode(model, parsers, snippet.text, result));
  }
  return result;
}

}  // namespace quenlith::build::markup::code
