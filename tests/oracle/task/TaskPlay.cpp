#include "oracle/task/TaskPlay.hpp"

#include "oracle/support/ResultText.hpp"

namespace quenlith::oracle {

namespace {

// Returns whether there is a result.
bool playParse(TaskPlayer& player, const Snippet& snippet, SnippetType& lastType) {
  bool hasResult = false;
  player.getWorld().note(outcomeOf([&] {
    const auto result = player.parse(snippet);
    lastType = result.type;
    hasResult = true;
    return showResult(result);
  }));
  return hasResult;
}

void playCanParse(TaskPlayer& player, const Snippet& snippet) {
  player.getWorld().note(outcomeOf(
      [&] { return std::string(player.canParse(snippet) ? "can parse" : "cannot parse"); }));
}

void playStep(TaskPlayer& player, const TaskStep& step, SnippetType& lastType) {
  Snippet snippet = step.snippet;
  if (step.usesLastType) snippet.type = lastType;
  switch (step.kind) {
    case TaskStep::Kind::kParse:
      if (!playParse(player, snippet, lastType) && step.isRetried) {
        playParse(player, snippet, lastType);
      }
      return;
    case TaskStep::Kind::kCanParse:
      return playCanParse(player, snippet);
    case TaskStep::Kind::kReset:
      lastType = {};
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
  SnippetType lastType;
  player.newDocument();
  for (const TaskStep& step : steps) playStep(player, step, lastType);
}

}  // namespace quenlith::oracle
