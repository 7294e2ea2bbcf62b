#pragma once

#include <memory>
#include <string>
#include <vector>

#include "oracle/support/World.hpp"
#include "oracle/task/TaskRow.hpp"
#include "oracle/task/TaskStep.hpp"
#include "quenlith/build/markup/ParseResult.hpp"

namespace quenlith::oracle {

/// A task parser with its host: the twin on plain records, or the real one on a real document.
class TaskPlayer {
 public:
  virtual ~TaskPlayer() = default;

  virtual World& getWorld() = 0;
  virtual bool canParse(const Snippet& snippet) = 0;
  virtual build::markup::ParseResult parse(const Snippet& snippet) = 0;
  virtual void reset() = 0;
  virtual void newDocument() = 0;
  virtual void addNode(HostNode node) = 0;
  /// `header` counts the top-level nodes with a task as their first child from 0; does nothing
  /// when there are none.
  virtual void setView(std::size_t header, const ustring& view) = 0;
  /// Returns the documents so far, in order.
  virtual std::vector<DocumentRecord> documents() const = 0;
  /// Returns the cells of the decision matrix so far, if the player knows them.
  virtual std::vector<TaskRow> rows() const { return {}; }
};

std::unique_ptr<TaskPlayer> makeTwinPlayer(const WorldPlan& plan);
std::unique_ptr<TaskPlayer> makeRealPlayer(const WorldPlan& plan);

/// Executes all steps. Results and exceptions are appended to the trace of the player's world.
void play(TaskPlayer& player, const TaskSteps& steps);

}  // namespace quenlith::oracle
