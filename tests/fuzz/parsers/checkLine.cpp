#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "document/kdzero/TesseraDocument.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/parsers/plans.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "fuzz/textOf.hpp"
#include "oracle/line/LineTwin.hpp"
#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/ResultText.hpp"
#include "oracle/support/readDocument.hpp"
#include "oracle/support/services.hpp"
#include "oracle/support/show.hpp"
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"

namespace quenlith::fuzz {

using build::markup::ParseResult;
using build::markup::Snippet;
using build::markup::code::CodeSnippetParserImpl;
using document::kdzero::TesseraDocument;
using fl::i18n::ustring;

namespace {

/// A document as plain data, and all calls of services, log records and results in order.
struct Outcome {
  oracle::DocumentRecord document;
  std::vector<std::string> trace;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome parseByTwin(const oracle::WorldPlan& plan, const ustring& line) {
  oracle::World world(plan);
  oracle::LineTwin twin(world);
  Outcome outcome;
  world.note(oracle::outcomeOf([&] {
    ParseResult result;
    world.log("Parsing using the default parser");
    twin.parseLine(outcome.document, line, result.markerTypes);
    return oracle::showResult(result);
  }));
  outcome.trace = world.getTrace();
  return outcome;
}

Outcome parse(const oracle::WorldPlan& plan, const ustring& line) {
  oracle::World world(plan);
  const oracle::LogRecorder recorder(world);
  const auto provider = std::make_shared<oracle::WorldProvider>(world);
  const auto document = std::make_shared<TesseraDocument>();
  CodeSnippetParserImpl parser(provider);
  Snippet snippet;
  snippet.text = line;
  world.note(
      oracle::outcomeOf([&] { return oracle::showResult(parser.parse(document, snippet)); }));
  if (document.use_count() != 1) world.note("the document is still held");
  if (!provider->isSoleOwner()) world.note("a service is still in use");
  require(document->getModel().verify(), "the document is intact");
  return {oracle::readDocument(*document), world.getTrace()};
}

}  // namespace

void checkLine(std::string_view input) {
  Choices choices(input);
  const oracle::WorldPlan plan = choosePlan(choices);
  const ustring line = textOf(choices.until('\n'));
  const Outcome twin = parseByTwin(plan, line);
  const Outcome real = parse(plan, line);
  require(real == twin, "the default parser does what its twin does", [&] {
    return oracle::showDifference(listing(twin.document), listing(real.document)) +
           oracle::showDifference(twin.trace, real.trace);
  });
}

}  // namespace quenlith::fuzz
