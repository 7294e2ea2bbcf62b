#include "exhaustive/LineComparison.hpp"

#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/line/LineCase.hpp"
#include "oracle/support/ResultText.hpp"
#include "oracle/support/readDocument.hpp"
#include "oracle/support/show.hpp"

namespace quenlith::exhaustive {

using build::markup::ParseResult;
using document::kdzero::TesseraDocument;
using oracle::DocumentRecord;
using oracle::LineCase;

struct LineComparison::Documents {
  DocumentRecord twin;
  std::shared_ptr<TesseraDocument> real = std::make_shared<TesseraDocument>();
};

LineComparison::LineComparison(const oracle::WorldPlan& plan, const Units& alphabet,
                               std::size_t first, std::size_t second)
    : alphabet(alphabet),
      twinWorld(plan),
      realWorld(plan),
      provider(std::make_shared<oracle::WorldProvider>(realWorld)),
      service(provider),
      twin(twinWorld) {
  if (plan.logging) recorder.emplace(realWorld);
  Documents documents;
  if (first == 0 && second == 0) compareLine(documents);
  snippet.text += alphabet[first];
  if (second == 0) compareLine(documents);
  snippet.text += alphabet[second];
  compareLine(documents);
}

void LineComparison::extend(std::size_t more) {
  if (more == 0) return;
  Documents documents;
  for (const std::u16string_view unit : alphabet) {
    const std::size_t size = snippet.text.size();
    snippet.text += unit;
    compareLine(documents);
    extend(more - 1);
    snippet.text.resize(size);
    if (!outcome.difference.empty()) return;
  }
  if (!documents.real->getModel().verify()) {
    outcome.difference = "a broken invariant after lines like " + oracle::show(snippet.text);
  }
}

void LineComparison::compareLine(Documents& documents) {
  ParseResult given;
  given.type = {7, 3};
  given.flag = outcome.cases % 2 == 0;
  ++outcome.cases;
  twinWorld.clearTrace();
  realWorld.clearTrace();
  twinWorld.note(oracle::outcomeOf([&] {
    ParseResult result = given;
    twin.parseLine(documents.twin, snippet.text, result.markerTypes);
    return oracle::showResult(result);
  }));
  outcome.occurrences += twin.getFacts().markers;
  realWorld.note(oracle::outcomeOf(
      [&] { return oracle::showResult(service.parseLine(documents.real, snippet, given)); }));
  if (!outcome.difference.empty()) return;
  const std::size_t nodes = documents.real->getNumberOfChildren();
  const bool agrees =
      twinWorld.getTrace() == realWorld.getTrace() && nodes == documents.twin.size() &&
      oracle::readNode(documents.real->getChildAt(nodes - 1)) == documents.twin.back();
  if (agrees) return;
  const LineCase lineCase{twinWorld.getPlan(), given, {snippet.text}};
  outcome.difference = oracle::show(snippet.text) + "\n" + oracle::report(oracle::shrink(lineCase));
}

}  // namespace quenlith::exhaustive
