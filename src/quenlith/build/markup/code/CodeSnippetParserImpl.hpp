#pragma once

#include <memory>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::code {

/// The default snippet parser: accepts every line and adds it to the document as plain code. Keeps
/// no state between lines.
class CodeSnippetParserImpl : public SnippetParser {
 public:
  /// Shares `parserServicesProvider`, which must not be null, for the life of the parser.
  explicit CodeSnippetParserImpl(
      const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider);
  ~CodeSnippetParserImpl() override;

  /// Returns true. Does not read the snippet.
  bool canParse(const Snippet& snippet) override;

  /// Appends the line node of `snippet`. Returns the marker kinds of the line, and the type {0, 0}:
  /// no task is open.
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                    const Snippet& snippet) override;

 private:
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
};

}  // namespace quenlith::build::markup::code
