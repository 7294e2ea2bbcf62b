#include "oracle/line/LineCase.hpp"

#include <memory>

#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/ResultText.hpp"
#include "oracle/support/randomLine.hpp"
#include "oracle/support/randomPlan.hpp"
#include "oracle/support/readDocument.hpp"
#include "oracle/support/services.hpp"
#include "oracle/support/show.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"

namespace quenlith::oracle {

namespace {

using build::markup::ParseResult;
using build::markup::Snippet;
using build::markup::code::LineNodeParserService;
using document::kdzero::TesseraDocument;

Snippet snippetOf(const ustring& line) {
  Snippet snippet;
  snippet.text = line;
  snippet.auxiliaryText = u"# <@task#unused>";
  snippet.type = {7, 3};
  return snippet;
}

const char* nameOf(AnswerRule::Kind kind) {
  switch (kind) {
    case AnswerRule::Kind::kNever:
      return "never";
    case AnswerRule::Kind::kAlways:
      return "always";
    case AnswerRule::Kind::kElement:
      return "element";
    case AnswerRule::Kind::kByMarker:
      return "by marker";
    case AnswerRule::Kind::kByCall:
      break;
  }
  return "by call";
}

std::string showRules(const std::vector<AnswerRule>& rules) {
  std::string out;
  for (const AnswerRule& rule : rules) {
    out += std::string(" (") + nameOf(rule.kind) + ' ' + show(rule.element) + ')';
  }
  return out;
}

}  // namespace

LineCase randomLineCase(Random& random) {
  LineCase lineCase;
  lineCase.plan = randomPlan(random);
  lineCase.lines.resize(random.between(1, 3));
  for (ustring& line : lineCase.lines) line = randomLine(random);
  lineCase.given.type = {static_cast<std::uint8_t>(random.below(256)),
                         static_cast<std::uint8_t>(random.below(256))};
  lineCase.given.flag = random.oneIn(2);
  if (random.oneIn(2)) lineCase.given.markerTypes.insert(u"%<@given>");
  return lineCase;
}

namespace {

Outcome runTwinIn(World& world, const LineCase& lineCase, std::vector<LineFacts>& facts) {
  LineTwin twin(world);
  Outcome outcome;
  for (const ustring& line : lineCase.lines) {
    world.note(outcomeOf([&] {
      ParseResult result = lineCase.given;
      twin.parseLine(outcome.document, line, result.markerTypes);
      return showResult(result);
    }));
    facts.push_back(twin.getFacts());
  }
  outcome.trace = world.getTrace();
  return outcome;
}

}  // namespace

Outcome runTwin(const LineCase& lineCase, std::vector<LineFacts>& facts) {
  World world(lineCase.plan);
  return runTwinIn(world, lineCase, facts);
}

std::size_t countCalls(const LineCase& lineCase) {
  World world(lineCase.plan);
  std::vector<LineFacts> facts;
  runTwinIn(world, lineCase, facts);
  return world.callCount();
}

Outcome runReal(const LineCase& lineCase) {
  World world(lineCase.plan);
  const LogRecorder recorder(world);
  const auto provider = std::make_shared<WorldProvider>(world);
  const auto document = std::make_shared<TesseraDocument>();
  {
    LineNodeParserService service(provider);
    for (const ustring& line : lineCase.lines) {
      world.note(outcomeOf([&] {
        return showResult(service.parseLine(document, snippetOf(line), lineCase.given));
      }));
      if (document.use_count() != 1) world.note("the document is still held");
      if (!provider->isSoleOwner()) world.note("a service is still in use");
    }
  }
  if (provider.use_count() != 1) world.note("the provider is still held");
  if (!document->getModel().verify()) world.note("an invariant of the document is broken");
  return {readDocument(*document), world.getTrace()};
}

bool agree(const LineCase& lineCase) {
  std::vector<LineFacts> facts;
  return runTwin(lineCase, facts) == runReal(lineCase);
}

std::string report(const LineCase& lineCase) {
  std::vector<LineFacts> facts;
  const Outcome twin = runTwin(lineCase, facts);
  const Outcome real = runReal(lineCase);
  std::string out = "code element parsers:" + showRules(lineCase.plan.codeElementParsers) +
                    (lineCase.plan.hasDefaultParser ? " and a default" : " and no default") +
                    "\ncontributor parsers:" + showRules(lineCase.plan.contributorParsers) + '\n';
  for (const ustring& line : lineCase.lines) out += "line " + show(line) + '\n';
  out += showDifference(listing(twin.document), listing(real.document));
  return out + showDifference(twin.trace, real.trace);
}

}  // namespace quenlith::oracle
