#pragma once

#include <memory>

#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::code {

/// Splits one line of text into segments and creates a node for each.
///
/// Text is UTF-16: positions and lengths count 16-bit code units from the start of the line, ranges
/// are half-open, and a line is passed without its line ending. Keeps no state between lines.
class LineNodeParserService {
 public:
  /// Shares `parserServicesProvider`, which must not be null, for the life of the service.
  explicit LineNodeParserService(
      const std::shared_ptr<services::ParserServicesProvider>& parserServicesProvider);
  LineNodeParserService(const LineNodeParserService&) = delete;
  LineNodeParserService& operator=(const LineNodeParserService&) = delete;
  virtual ~LineNodeParserService();

  /// Appends one line node for `snippet.text` to `document`. This is the last step.
  ///
  /// Returns `result` with the marker kinds of the line added to `markerTypes`; the other fields
  /// are unchanged. A marker with unusable position data becomes a failure on the node. Throws
  /// std::runtime_error when the line has plain text and no default code element parser is
  /// registered. Propagates exceptions from parser services and the model. `document` is unchanged
  /// when it throws, unless a service has returned an element that was in it. A service may change
  /// `snippet`. O(n + m log m) for n code units and m markers.
  ParseResult parseLine(std::shared_ptr<document::kdzero::TesseraDocument> document,
                        const Snippet& snippet, ParseResult result);

 private:
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
};

}  // namespace quenlith::build::markup::code
