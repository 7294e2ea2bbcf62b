#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "tessera/session/LineTable.hpp"
#include "tessera/session/LogCollector.hpp"
#include "tessera/session/NamedParser.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::session {

class Recording;

/// One file, parsed.
struct ParsedSnippet {
  /// The text that was parsed.
  source::JoinedLines code;
  std::shared_ptr<document::kdzero::TesseraDocument> document;
  LineTable lines;
};

/// Thrown when a parser throws or when no parser accepts a line.
class ParserError : public std::exception {
 public:
  /// `parser` is null if no parser threw.
  ParserError(std::uint64_t lineNumber, const NamedParser* parser, std::string reason);

  /// 1-based; 0 when it happened before the first line.
  std::uint64_t line() const noexcept { return lineNumber; }
  /// Returns the name and the bundle of the parser that threw, as a phrase; empty if none did.
  const std::string& parser() const noexcept { return parserPhrase; }
  const char* what() const noexcept override { return reason.c_str(); }

 private:
  std::uint64_t lineNumber;
  std::string parserPhrase;
  std::string reason;
};

/// Passes the lines of snippets to the snippet parsers.
class SnippetSession {
 public:
  /// Parsers are asked in the order of `parsersInOrder`, the default one last. `log` and
  /// `recording` are borrowed and may be null: then no log records are kept, no calls recorded.
  SnippetSession(std::vector<NamedParser> parsersInOrder, LogCollector* log, Recording* recording);

  const std::vector<NamedParser>& parsers() const noexcept { return parsersInOrder; }

  /// Resets the parsers and parses `code` into a new document.
  ///
  /// Throws ParserError, and OutputError when the calls cannot be recorded; the parsers are
  /// reset again by the next call.
  ParsedSnippet parse(source::JoinedLines code);

  /// From now on, `line` is set to the 1-based number of each line before it is parsed. Borrowed.
  void showLineIn(std::atomic<std::uint64_t>& line) noexcept { currentLine = &line; }

 private:
  void resetParsers();
  std::size_t choose(const quenlith::build::markup::Snippet& snippet);
  LineOutcome parseLine(const std::shared_ptr<document::kdzero::TesseraDocument>& document,
                        const quenlith::build::markup::Snippet& snippet);

  std::vector<NamedParser> parsersInOrder;
  LogCollector* log;
  Recording* recording;
  std::atomic<std::uint64_t>* currentLine = nullptr;
  // The parser that is being called; null between calls.
  const NamedParser* called = nullptr;
};

}  // namespace tessera::session
