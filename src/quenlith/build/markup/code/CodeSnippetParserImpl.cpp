#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"

#include "quenlith/build/markup/code/LineNodeParserService.hpp"
#include "quenlith/shared/logging/trace.hpp"

namespace quenlith::build::markup::code {

using quenlith::shared::logging::trace;

CodeSnippetParserImpl::CodeSnippetParserImpl(
    const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider)
    : parserServicesProvider(parserServicesProvider) {}

CodeSnippetParserImpl::~CodeSnippetParserImpl() = default;

bool CodeSnippetParserImpl::canParse(const Snippet& /*snippet*/) {
  trace("Checking the default parser");
  return true;
}

ParseResult CodeSnippetParserImpl::parse(
    std::shared_ptr<document::kdzero::TesseraDocument> document, const Snippet& snippet) {
  trace("Parsing using the default parser");
  LineNodeParserService service(parserServicesProvider);
  ParseResult result = service.parseLine(document, snippet, ParseResult());
  // A line of plain code leaves no task open, whatever the type of the result.
  result.type = SnippetType{};
  return result;
}

}  // namespace quenlith::build::markup::code
