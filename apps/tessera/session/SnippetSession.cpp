#include "tessera/session/SnippetSession.hpp"

#include <atomic>
#include <stdexcept>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/describeException.hpp"
#include "tessera/session/Recording.hpp"

namespace tessera::session {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::Snippet;

namespace {

/// Returns a version that no other block of this process has: sessions may share parsers.
std::uint64_t nextBlockVersion() noexcept {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

ParserError::ParserError(std::uint64_t lineNumber, const NamedParser* parser, std::string reason)
    : lineNumber(lineNumber), reason(std::move(reason)) {
  if (parser == nullptr) return;
  parserPhrase = parser->name.empty() ? "a parser" : "the parser " + parser->name;
  if (!parser->bundle.empty()) parserPhrase += " of the bundle " + parser->bundle;
}

SnippetSession::SnippetSession(std::vector<NamedParser> parsersInOrder, LogCollector* log,
                               Recording* recording)
    : parsersInOrder(std::move(parsersInOrder)), log(log), recording(recording) {}

ParsedSnippet SnippetSession::parse(source::JoinedLines code) {
  ParsedSnippet parsed;
  parsed.document = std::make_shared<TesseraDocument>();
  parsed.code.any = code.any;
  Snippet snippet;
  snippet.auxiliaryText = std::move(code.text);
  snippet.blockVersion = nextBlockVersion();
  std::uint64_t number = 0;
  try {
    resetParsers();
    source::LineCursor cursor(snippet.auxiliaryText, code.any);
    while (const auto line = cursor.next()) {
      ++number;
      if (currentLine != nullptr) currentLine->store(number, std::memory_order_relaxed);
      snippet.text.assign(*line);
      LineOutcome outcome = parseLine(parsed.document, snippet);
      snippet.type = outcome.result.type;
      parsed.lines.add(std::move(outcome));
    }
  } catch (const diagnostics::ProblemError&) {
    throw;
  } catch (...) {
    throw ParserError(number, std::exchange(called, nullptr), diagnostics::describeException());
  }
  parsed.code.text = std::move(snippet.auxiliaryText);
  return parsed;
}

void SnippetSession::resetParsers() {
  for (const NamedParser& entry : parsersInOrder) {
    if (recording != nullptr) recording->reset(entry.name);
    called = &entry;
    entry.parser->reset();
  }
  called = nullptr;
  // Records of a reset do not belong to a line.
  if (log != nullptr) log->take();
}

std::size_t SnippetSession::choose(const Snippet& snippet) {
  for (std::size_t i = 0; i < parsersInOrder.size(); ++i) {
    if (recording != nullptr) recording->canParse(parsersInOrder[i].name, snippet);
    called = &parsersInOrder[i];
    if (called->parser->canParse(snippet)) return i;
  }
  called = nullptr;
  throw std::runtime_error("no snippet parser takes the line");
}

LineOutcome SnippetSession::parseLine(const std::shared_ptr<TesseraDocument>& document,
                                      const Snippet& snippet) {
  LineOutcome outcome;
  outcome.parser = choose(snippet);
  const NamedParser& chosen = parsersInOrder[outcome.parser];
  if (recording != nullptr) recording->parse(chosen.name, snippet);
  outcome.firstNode = document->getNumberOfChildren();
  outcome.result = chosen.parser->parse(document, snippet);
  called = nullptr;
  outcome.nodeCount = document->getNumberOfChildren() - outcome.firstNode;
  if (log != nullptr) outcome.log = log->take();
  return outcome;
}

}  // namespace tessera::session
