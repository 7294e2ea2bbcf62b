#pragma once

#include <memory>

#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::code {

/// The default snippet parser: takes every line and puts it into the document as plain code.
/// Keeps nothing from line to line.
class CodeSnippetParserImpl : public SnippetParser {
 public:
  /// Shares `provider`, which must not be null, for the life of the parser.
  explicit CodeSnippetParserImpl(const std::shared_ptr<services::ParserServicesProvider>& provider);
  ~CodeSnippetParserImpl() override;

  /// Returns true; the snippet is not looked at.
  bool canParse(const Snippet& snippet) override;

  /// Appends the line node of `snippet` and returns the type {0, 0}, which says that no task is
  /// open, with the marker kinds of the line.
  ParseResult parse(std::shared_ptr<document::kdzero::TesseraDocument> document,
                    const Snippet& snippet) override;

 private:
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
};

}  // namespace quenlith::build::markup::code
