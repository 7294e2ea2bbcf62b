#include "oracle/task/TaskPlay.hpp"

#include "oracle/support/ResultText.hpp"

namespace quenlith::oracle {

namespace {

void playParse(TaskPlayer& player, const Snippet& snippet, SnippetType& handedBack) {
  player.getWorld().note(outcomeOf([&] {
    const auto result = player.parse(snippet);
    handedBack = result.type;
    return showResult(result);
  }));
}

void playStep(TaskPlayer& player, const TaskStep& step, SnippetType& handedBack) {
  Snippet snippet = step.snippet;
  if (step.handBack) snippet.type = handedBack;
  switch (step.kind) {
    case TaskStep::Kind::kParse:
      return playParse(player, snippet, handedBack);
    case TaskStep::Kind::kCanParse:
      return player.getWorld().note(player.canParse(snippet) ? "can parse" : "cannot parse");
    case TaskStep::Kind::kReset:
      handedBack = {};
      return player.reset();
    case TaskStep::Kind::kAddNode:
      return player.addNode(step.node);
    case TaskStep::Kind::kChangeHeader:
      return player.setView(step.header, step.view);
    case TaskStep::Kind::kNewDocument:
      return player.newDocument();
    case TaskStep::Kind::kAppendix:
      return player.getWorld().setAppendix(step.appendix);
  }
}

}  // namespace

void play(TaskPlayer& player, const TaskSteps& steps) {
  SnippetType handedBack;
  player.newDocument();
  for (const TaskStep& step : steps) playStep(player, step, handedBack);
}

}  // namespace quenlith::oracle
