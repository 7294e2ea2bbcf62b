#include "tessera/session/SnippetSession.hpp"

#include <new>
#include <stdexcept>
#include <utility>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/describeException.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/session/nextBlockVersion.hpp"

namespace tessera::session {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::SnippetType;

namespace {

/// A parser has accepted a line and added nothing for it.
struct NodeMissing {};

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
    parseLines(snippet, parsed, number);
  } catch (const diagnostics::ProblemError&) {
    throw;
  } catch (const std::bad_alloc&) {
    called = nullptr;
    throw;
  } catch (const NodeMissing&) {
    throw ParserError(number, std::exchange(called, nullptr),
                      "accepted the line and added no node for it");
  } catch (...) {
    const NamedParser* parser = std::exchange(called, nullptr);
    throw ParserError(number, parser,
                      (parser == nullptr ? "" : "threw: ") + diagnostics::describeException());
  }
  parsed.code.text = std::move(snippet.auxiliaryText);
  return parsed;
}

void SnippetSession::showPlace(std::uint64_t number, std::size_t place,
                               std::size_t size) const noexcept {
  if (stage.progress == nullptr) return;
  stage.progress->line.store(number, std::memory_order_relaxed);
  if (number % progress::kStepsPerShow == 0) stage.show(place, size);
}

/// `number` becomes that of the current line.
void SnippetSession::parseLines(Snippet& snippet, ParsedSnippet& parsed, std::uint64_t& number) {
  const std::u16string_view text = snippet.auxiliaryText;
  source::LineCursor cursor(text, parsed.code.any);
  std::size_t partBegin = 0;
  std::uint64_t partLines = 0;
  while (const auto line = cursor.next()) {
    ++number;
    const auto place = static_cast<std::size_t>(line->data() - text.data());
    showPlace(number, place, text.size());
    if (partLines == 0) partBegin = place;
    snippet.text.assign(*line);
    LineOutcome outcome = parseLine(parsed.document, snippet);
    outcome.firstNode += parsed.parts.nodeCount();
    snippet.type = outcome.result.type;
    parsed.lines.add(std::move(outcome));
    ++partLines;
    // While a task is open, the task parser refers to its header by its index in the document.
    if (!sparesPlainLines || partLines < parsed.parts.nextSize() || snippet.type != SnippetType())
      continue;
    parsed.parts.add(std::exchange(parsed.document, std::make_shared<TesseraDocument>()), partBegin,
                     text.substr(partBegin, place + line->size() - partBegin));
    partLines = 0;
  }
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
  throw std::runtime_error("no snippet parser accepts the line");
}

LineOutcome SnippetSession::parseLine(const std::shared_ptr<TesseraDocument>& document,
                                      const Snippet& snippet) {
  LineOutcome outcome;
  outcome.parser = choose(snippet);
  const NamedParser& chosen = parsersInOrder[outcome.parser];
  if (recording != nullptr) recording->parse(chosen.name, snippet);
  outcome.firstNode = document->getNumberOfChildren();
  outcome.result = chosen.parser->parse(document, snippet);
  outcome.nodeCount = document->getNumberOfChildren() - outcome.firstNode;
  if (outcome.nodeCount == 0) throw NodeMissing();
  called = nullptr;
  if (log != nullptr) outcome.log = log->take();
  return outcome;
}

}  // namespace tessera::session
