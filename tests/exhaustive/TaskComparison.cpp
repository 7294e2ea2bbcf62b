#include "exhaustive/TaskComparison.hpp"

#include <algorithm>

#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/support/ResultText.hpp"
#include "oracle/support/readDocument.hpp"
#include "oracle/support/services.hpp"
#include "oracle/support/show.hpp"
#include "oracle/task/TaskCase.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace quenlith::exhaustive {

using build::markup::code::TaskSnippetParserImpl;
using document::kdzero::TesseraDocument;
using oracle::NodeRecord;
using oracle::ustring;
using oracle::World;
using oracle::WorldPlan;

namespace {

const std::vector<ustring> kAppendix = {u"%<@task#a {\"uniqueId\":\"id of a\",\"view\":true}>"};

WorldPlan planForTasks(bool logging) {
  WorldPlan plan;
  plan.builtInDefaultParser = true;
  plan.logging = logging;
  return plan;
}

// Makes `call` by `canParse`, `parse` and `reset`, and notes the answers.
template <class Parse, class Parser>
void make(const TaskCall& call, World& world, Parser& parser, const Parse& parse) {
  world.clearTrace();
  if (call.isReset) return parser.reset();
  world.note(parser.canParse(call.snippet) ? "can parse" : "cannot parse");
  world.note(oracle::outcomeOf([&] { return oracle::showResult(parse(call.snippet)); }));
}

bool isClosed(const NodeRecord& node) {
  return !node.children.empty() && node.children.front().task.numCodeLines != 0;
}

}  // namespace

TaskComparison::TaskComparison(const TaskCalls& alphabet, std::size_t length, bool logging)
    : alphabet(alphabet),
      length(length),
      twinWorld(planForTasks(logging)),
      realWorld(planForTasks(logging)),
      provider(std::make_shared<oracle::WorldProvider>(realWorld)),
      appendix(std::make_shared<oracle::WorldAppendix>(realWorld)) {
  if (logging) recorder.emplace(realWorld);
  twinWorld.setAppendix(kAppendix);
  realWorld.setAppendix(kAppendix);
  states.reserve(kWholeUnits + 1);
  states.push_back({oracle::TaskTwin(twinWorld), {}});
}

void TaskComparison::compareFrom(std::size_t first, std::size_t second) {
  if (alphabet[first].isReset) return;
  callTwin(alphabet[first]);
  extend(alphabet[second]);
}

void TaskComparison::extend(const TaskCall& call) {
  const bool isLast = calls.size() + 1 == length;
  if (call.isReset && (isLast || calls.back()->isReset)) return;
  callTwin(call);
  if (isLast) {
    compareSequence();
  } else {
    for (const TaskCall& next : alphabet) {
      if (outcome.difference.empty()) extend(next);
    }
  }
  calls.pop_back();
  traces.pop_back();
  states.pop_back();
}

void TaskComparison::callTwin(const TaskCall& call) {
  State& state = states.emplace_back(states.back());
  make(call, twinWorld, state.twin, [&](const build::markup::Snippet& snippet) {
    return state.twin.parse(state.document, snippet);
  });
  calls.push_back(&call);
  traces.push_back(twinWorld.getTrace());
}

void TaskComparison::compareSequence() {
  ++outcome.cases;
  const auto& document = states.back().document;
  outcome.occurrences +=
      static_cast<std::uint64_t>(std::count_if(document.begin(), document.end(), isClosed));
  const std::string difference = runReal();
  if (!difference.empty()) outcome.difference = describe(difference);
}

std::string TaskComparison::runReal() {
  TaskSnippetParserImpl parser(appendix, provider);
  const auto document = std::make_shared<TesseraDocument>();
  for (std::size_t i = 0; i < calls.size(); ++i) {
    make(*calls[i], realWorld, parser,
         [&](const build::markup::Snippet& snippet) { return parser.parse(document, snippet); });
    if (realWorld.getTrace() != traces[i]) {
      return "call " + std::to_string(i) + '\n' +
             oracle::showDifference(traces[i], realWorld.getTrace());
    }
  }
  const auto nodes = oracle::readDocument(*document);
  if (nodes == states.back().document) return {};
  return "documents\n" +
         oracle::showDifference(oracle::listing(states.back().document), oracle::listing(nodes));
}

std::string TaskComparison::describe(const std::string& difference) const {
  std::string out;
  for (const TaskCall* call : calls) {
    oracle::TaskStep step;
    step.kind = call->isReset ? oracle::TaskStep::Kind::kReset : oracle::TaskStep::Kind::kParse;
    step.snippet = call->snippet;
    out += oracle::showStep(step) + '\n';
  }
  return out + difference;
}

}  // namespace quenlith::exhaustive
