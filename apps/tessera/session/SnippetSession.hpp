#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "tessera/progress/InputProgress.hpp"
#include "tessera/session/LineTable.hpp"
#include "tessera/session/LogCollector.hpp"
#include "tessera/session/NamedParser.hpp"
#include "tessera/session/NodeParts.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::session {

class Recording;

/// One file, parsed.
struct ParsedSnippet {
  /// The text that was parsed.
  source::JoinedLines code;
  /// The first nodes; none if plain lines are not spared.
  NodeParts parts;
  /// The other nodes.
  std::shared_ptr<document::kdzero::TesseraDocument> document;
  LineTable lines;
};

/// Thrown when a parser throws, when it adds no node for a line that it has accepted, so that the
/// text would be lost, or when no parser accepts a line.
class ParserError : public std::exception {
 public:
  /// `parser` is null if no parser is to blame.
  ParserError(std::uint64_t lineNumber, const NamedParser* parser, std::string reason);

  /// 1-based; 0 when it happened before the first line.
  std::uint64_t line() const noexcept { return lineNumber; }
  /// Returns the name and the bundle of the parser, as a phrase; empty without one.
  const std::string& parser() const noexcept { return parserPhrase; }
  /// Says what the parser did, as a predicate: "threw: ..."; without a parser, what happened.
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

  /// From now on, the nodes of most plain lines are not kept: documents are replaced by new ones
  /// between lines, where no task is open. The snippet parsers must not keep anything else about a
  /// document from one line to the next.
  void sparePlainLines() noexcept { sparesPlainLines = true; }

  /// From now on, the progress of `shown` gets the number of each line before it is parsed, and the
  /// share of the text that is parsed.
  void showIn(const progress::Stage& shown) noexcept { stage = shown; }

 private:
  void resetParsers();
  std::size_t choose(const quenlith::build::markup::Snippet& snippet);
  void showPlace(std::uint64_t number, std::size_t place, std::size_t size) const noexcept;
  void parseLines(quenlith::build::markup::Snippet& snippet, ParsedSnippet& parsed,
                  std::uint64_t& number);
  LineOutcome parseLine(const std::shared_ptr<document::kdzero::TesseraDocument>& document,
                        const quenlith::build::markup::Snippet& snippet);

  std::vector<NamedParser> parsersInOrder;
  LogCollector* log;
  Recording* recording;
  bool sparesPlainLines = false;
  progress::Stage stage;
  // The parser that is being called; null between calls.
  const NamedParser* called = nullptr;
};

}  // namespace tessera::session
