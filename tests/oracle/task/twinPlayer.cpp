#include "oracle/task/TaskPlay.hpp"
#include "oracle/task/TaskTwin.hpp"

namespace quenlith::oracle {

namespace {

NodeRecord hostNode(HostNode node) {
  NodeRecord record = NodeRecord::of(NodeKind::kTaskLine);
  if (node == HostNode::kLine || node == HostNode::kLineWithTask) record.kind = NodeKind::kLine;
  if (node == HostNode::kTextWithTask) record.kind = NodeKind::kPlainText;
  if (node == HostNode::kLine || node == HostNode::kHeaderWithTaskSecond) {
    record.children.push_back(NodeRecord::plainText(u"host"));
  }
  if (node != HostNode::kLine && node != HostNode::kHeaderWithoutChild) {
    record.children.push_back(NodeRecord::of(NodeKind::kTaskInline));
  }
  return record;
}

bool hasTaskFirst(const NodeRecord& node) {
  return !node.children.empty() && node.children.front().kind == NodeKind::kTaskInline;
}

class TwinPlayer final : public TaskPlayer {
 public:
  explicit TwinPlayer(const WorldPlan& plan) : world(plan), twin(world) {}

  World& getWorld() override { return world; }
  bool canParse(const Snippet& snippet) override { return twin.canParse(snippet); }

  ParseResult parse(const Snippet& snippet) override {
    struct CollectRows {
      TwinPlayer& player;
      ~CollectRows() {
        const auto& rows = player.twin.getRows();
        player.metRows.insert(player.metRows.end(), rows.begin(), rows.end());
      }
    } collect{*this};
    return twin.parse(all.back(), snippet);
  }

  void reset() override { twin.reset(); }
  void newDocument() override { all.emplace_back(); }
  void addNode(HostNode node) override { all.back().push_back(hostNode(node)); }

  void setView(std::size_t header, const ustring& view) override {
    for (NodeRecord& node : all.back()) {
      if (!hasTaskFirst(node)) continue;
      if (header-- == 0) node.children.front().task.view = view;
    }
  }

  std::vector<DocumentRecord> documents() const override { return all; }
  std::vector<TaskRow> rows() const override { return metRows; }

 private:
  World world;
  TaskTwin twin;
  std::vector<DocumentRecord> all;
  std::vector<TaskRow> metRows;
};

}  // namespace

std::unique_ptr<TaskPlayer> makeTwinPlayer(const WorldPlan& plan) {
  return std::make_unique<TwinPlayer>(plan);
}

}  // namespace quenlith::oracle
