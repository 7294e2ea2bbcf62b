#include "tessera/replay/Replay.hpp"

#include <boost/uuid/uuid.hpp>
#include <new>
#include <utility>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/LiveAppIntegratedInlineNode.hpp"
#include "document/kdzero/LiveAppLineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "tessera/diagnostics/describeException.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/session/ResultJson.hpp"
#include "tessera/session/nextBlockVersion.hpp"

namespace tessera::replay {

using namespace document::kdzero;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::SnippetParser;

Replay::Replay(std::vector<session::NamedParser> parsers, Appendix& appendix,
               files::OutputText& output)
    : parsers(std::move(parsers)),
      appendix(appendix),
      output(output),
      json(output.text(), foundation::json::Form::kCompact),
      nodes(output, json, {.form = foundation::json::Form::kCompact}),
      document(std::make_shared<TesseraDocument>()) {}

void Replay::run(const Command& command) {
  runOperation(command);
  output.text() += '\n';
  output.flushIfLarge();
}

void Replay::runOperation(const Command& command) {
  switch (command.operation) {
    case Operation::kCanParse:
      return canParse(command);
    case Operation::kParse:
      return parse(command);
    case Operation::kReset:
      return reset(command);
    case Operation::kNodes:
      return writeNodes();
    case Operation::kDocument:
      document = std::make_shared<TesseraDocument>();
      break;
    case Operation::kAppendix:
      appendix.replace(command.entries);
      break;
    case Operation::kAddLine:
      addLine(command);
      break;
    case Operation::kSetView:
      setView(command);
      break;
  }
  json.beginObject();
  json.endObject();
}

void Replay::canParse(const Command& command) {
  SnippetParser& parser = findParser(command);
  const auto& taken = takeSnippet(command.snippet);
  answerCall([&] {
    const bool answer = parser.canParse(taken);
    json.beginObject();
    json.key("canParse");
    json.boolean(answer);
  });
}

void Replay::parse(const Command& command) {
  SnippetParser& parser = findParser(command);
  const auto& taken = takeSnippet(command.snippet);
  answerCall([&] {
    const ParseResult result = parser.parse(document, taken);
    json.beginObject();
    json.key("result");
    json.beginObject();
    session::writeResultMembers(json, result);
    json.endObject();
  });
}

void Replay::reset(const Command& command) {
  SnippetParser& parser = findParser(command);
  answerCall([&] {
    parser.reset();
    json.beginObject();
  });
}

/// Makes the call, then adds the log records to its answer. The call begins the answer's object as
/// its last step that can fail: one that throws has not begun it.
template <typename Call>
void Replay::answerCall(const Call& call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    // Not what the parser does with this call: the run ends.
    throw;
  } catch (...) {
    const std::string reason = diagnostics::describeException();
    json.beginObject();
    json.key("error");
    json.text(std::string_view(reason));
  }
  session::writeLog(json, log.take());
  json.endObject();
}

void Replay::writeNodes() {
  session::ParsedSnippet snippet;
  snippet.document = document;
  json.beginObject();
  nodes.writeMember(snippet, {});
  json.endObject();
}

void Replay::addLine(const Command& command) {
  const kd::zero::Model model = document->getModel();
  LineNode line = LineNode::Builder(model).createLineNode(boost::uuids::uuid());
  PlainTextNode text = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid());
  text->setText(command.text);
  line->getChildrenMutable().add(text);
  document->addChild(line);
}

void Replay::setView(const Command& command) {
  const auto& top = document->getChildren();
  LiveAppIntegratedInlineNode task;
  if (command.node < top.size() && LiveAppLineNode::castFrom(top[command.node]) &&
      top[command.node]->getChildren().size() != 0) {
    task = LiveAppIntegratedInlineNode::castFrom(top[command.node]->getChildren()[0]);
  }
  if (!task) {
    throw CommandError{
        .column = command.subjectColumn,
        .what = "the node " + std::to_string(command.node) + " is not the header of a task",
        .remedy = "count the top-level nodes from 0, as \"nodes\" shows them"};
  }
  auto data = task->getLiveTaskData();
  task->setLiveTaskData(data.setView(command.view));
}

SnippetParser& Replay::findParser(const Command& command) const {
  const std::string wanted = fl::i18n::ustring_to_utf8(command.parser);
  std::string known;
  for (const session::NamedParser& entry : parsers) {
    if (entry.name == wanted) return *entry.parser;
    if (!known.empty()) known += " or ";
    known += diagnostics::quotedText(fl::i18n::utf8_to_ustring(entry.name));
  }
  throw CommandError{.column = command.subjectColumn,
                     .what = "there is no parser " + diagnostics::quotedText(command.parser),
                     .remedy = "name " + known + ", or start the bundle that has it with --bundle"};
}

const quenlith::build::markup::Snippet& Replay::takeSnippet(const CommandSnippet& given) {
  snippet.text = given.text;
  snippet.type = given.type;
  if (given.auxiliaryText) {
    snippet.auxiliaryText = *given.auxiliaryText;
    snippet.blockVersion = session::nextBlockVersion();
  }
  return snippet;
}

}  // namespace tessera::replay
