#pragma once

#include <memory>

#include "document/kdzero/TesseraDocument.hpp"
#include "quenlith/build/markup/ParseResult.hpp"
#include "quenlith/build/markup/Snippet.hpp"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"

namespace quenlith::build::markup::code {

/// Cuts one line of text into pieces and makes a node of each.
///
/// Text is UTF-16: positions and lengths count 16-bit code units from the start of the line,
/// ranges are half-open, a line comes without its line ending. Keeps nothing from line to line.
class LineNodeParserService {
 public:
  /// Shares `provider` for the life of the service. Must not be null.
  explicit LineNodeParserService(const std::shared_ptr<services::ParserServicesProvider>& provider);
  LineNodeParserService(const LineNodeParserService&) = delete;
  LineNodeParserService& operator=(const LineNodeParserService&) = delete;
  virtual ~LineNodeParserService();

  /// Appends one line node for `snippet.text` to `document`, as its last step.
  ///
  /// Returns `result` with the marker kinds of the line added to `markerTypes`; its other
  /// fields come back as they were. A marker whose position data cannot be used becomes a
  /// failure on the node. Throws std::runtime_error when plain text is met and no default code
  /// element parser is registered, and what a parser service or the model throws; `document`
  /// is then as it was. O(n + m log m) for n code units and m markers.
  ParseResult parseLine(std::shared_ptr<document::kdzero::TesseraDocument> document,
                        const Snippet& snippet, ParseResult result);

 private:
  std::shared_ptr<services::ParserServicesProvider> parserServicesProvider;
};

}  // namespace quenlith::build::markup::code
