#include <boost/uuid/nil_generator.hpp>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "document/kdzero/TesseraDocument.hpp"
#include "oracle/support/LogRecorder.hpp"
#include "oracle/support/WorldAppendix.hpp"
#include "oracle/support/readDocument.hpp"
#include "oracle/support/services.hpp"
#include "oracle/task/TaskPlay.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"

namespace quenlith::oracle {

namespace {

using namespace document::kdzero;
using build::markup::ParseResult;
using build::markup::code::TaskSnippetParserImpl;

Node hostNode(const kd::zero::Model& model, HostNode node) {
  const auto nil = boost::uuids::nil_uuid();
  Node line = LiveAppLineNode::Builder(model).createLiveAppLineNode(nil);
  if (node == HostNode::kLine || node == HostNode::kLineWithTask) {
    line = LineNode::Builder(model).createLineNode(nil);
  }
  if (node == HostNode::kTextWithTask) {
    line = PlainTextNode::Builder(model).createPlainTextNode(nil);
  }
  if (node == HostNode::kLine || node == HostNode::kHeaderWithTaskSecond) {
    const PlainTextNode text = PlainTextNode::Builder(model).createPlainTextNode(nil);
    text->setText(u"host");
    line->getChildrenMutable().add(text);
  }
  if (node != HostNode::kLine && node != HostNode::kHeaderWithoutChild) {
    line->getChildrenMutable().add(
        LiveAppIntegratedInlineNode::Builder(model).createLiveAppIntegratedInlineNode(nil));
  }
  return line;
}

LiveAppIntegratedInlineNode firstTaskOf(const Node& node) {
  const auto& children = node->getChildren();
  if (children.empty()) return {};
  const bool isTask = &children[0]->getMetaClass() == &LiveAppIntegratedInlineNode::Impl::classOf();
  return isTask ? LiveAppIntegratedInlineNode::share(children[0].get())
                : LiveAppIntegratedInlineNode();
}

class RealPlayer final : public TaskPlayer {
 public:
  explicit RealPlayer(const WorldPlan& plan)
      : world(plan),
        recorder(world),
        provider(std::make_shared<WorldProvider>(world)),
        appendix(std::make_shared<WorldAppendix>(world)),
        parser(std::make_unique<TaskSnippetParserImpl>(appendix, provider)) {}

  World& getWorld() override { return world; }
  bool canParse(const Snippet& snippet) override { return parser->canParse(snippet); }

  ParseResult parse(const Snippet& snippet) override {
    struct CheckReferences {
      RealPlayer& player;
      ~CheckReferences() { player.checkReferences(); }
    } check{*this};
    // Reuses the buffer of the block: an equal address must not be taken for an equal block.
    ownSnippet.text = snippet.text;
    ownSnippet.type = snippet.type;
    ownSnippet.auxiliaryText = snippet.auxiliaryText;
    return parser->parse(all.back(), ownSnippet);
  }

  void reset() override { parser->reset(); }
  void newDocument() override { all.push_back(std::make_shared<TesseraDocument>()); }
  void addNode(HostNode node) override {
    all.back()->addChild(hostNode(all.back()->getModel(), node));
  }

  void setView(std::size_t header, const ustring& view) override {
    for (const Node& node : all.back()->getChildren()) {
      const auto task = firstTaskOf(node);
      if (!task || header-- != 0) continue;
      auto data = task->getLiveTaskData();
      task->setLiveTaskData(data.setView(view));
    }
  }

  std::vector<DocumentRecord> documents() const override {
    std::vector<DocumentRecord> records;
    for (const auto& document : all) records.push_back(readDocument(*document));
    return records;
  }

 private:
  void checkReferences() {
    if (all.back().use_count() != 1) world.note("the document is still held");
    if (provider.use_count() != 2) world.note("the provider is still held");
    if (!provider->isSoleOwner()) world.note("a service is still in use");
  }

  World world;
  LogRecorder recorder;
  std::shared_ptr<WorldProvider> provider;
  std::shared_ptr<WorldAppendix> appendix;
  std::unique_ptr<TaskSnippetParserImpl> parser;
  std::vector<std::shared_ptr<TesseraDocument>> all;
  Snippet ownSnippet;
};

}  // namespace

std::unique_ptr<TaskPlayer> makeRealPlayer(const WorldPlan& plan) {
  return std::make_unique<RealPlayer>(plan);
}

}  // namespace quenlith::oracle
