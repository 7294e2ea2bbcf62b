#include "quenlith/build/markup/code/LineNodeParserService.hpp"

#include <boost/uuid/uuid.hpp>
#include <utility>

#include "document/kdzero/LineNode.hpp"
#include "quenlith/build/markup/code/LineContent.hpp"
#include "quenlith/build/markup/code/LineParse.hpp"
#include "quenlith/build/markup/code/LineParsers.hpp"
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
  const LineNode::Builder builder(model);
  const LineParsers parsers(*parserServicesProvider);

  // Most lines are plain, and what becomes of such a line is known.
  const LineContent content = lookInto(snippet.text);
  if (content.isPlain() && parsers.makesPlainTextNodes()) {
    document->addChild(builder.createLineNode(boost::uuids::uuid{}, snippet.text));
    return result;
  }
  LineNode lineNode = builder.createLineNode(boost::uuids::uuid{});
  LineParse(model, lineNode, parsers, result).parse(snippet.text, content);
  document->addChild(std::move(lineNode));
  return result;
}

}  // namespace quenlith::build::markup::code
