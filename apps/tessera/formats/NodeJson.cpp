#include "tessera/formats/NodeJson.hpp"

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <string_view>

#include "document/kdzero/LineNode.hpp"
#include "document/kdzero/PlainTextNode.hpp"
#include "foundation/json/format.hpp"
#include "tessera/formats/NodeWriter.hpp"
#include "tessera/session/NodeCursor.hpp"
#include "tessera/session/plainLine.hpp"

namespace tessera::formats {

using namespace document::kdzero;

namespace {

constexpr std::string_view kNodesKey = "nodes";

/// Returns the JSON of a plain line whose text is `text`, as it follows another node in the member.
std::string renderPlainLine(JsonLayout layout, std::u16string_view text) {
  const kd::zero::Model model = kd::zero::Model::create();
  LineNode line = LineNode::Builder(model).createLineNode(boost::uuids::uuid());
  PlainTextNode child = PlainTextNode::Builder(model).createPlainTextNode(boost::uuids::uuid());
  child->setText(text);
  line->getChildrenMutable().add(child);
  std::string rendered;
  foundation::json::Writer writer(rendered, layout.form, layout.emptyMembers);
  writer.beginObject();
  writer.key(kNodesKey);
  writer.beginArray();
  // In place of the previous node, so that the writer puts a comma before this one.
  writer.null();
  const std::size_t begin = rendered.size();
  NodeWriter(writer).write(line);
  return rendered.substr(begin);
}

}  // namespace

NodeJson::NodeJson(files::OutputText& output, foundation::json::Writer& json, JsonLayout layout)
    : output(output), json(json), emptyLine(renderPlainLine(layout, {})) {
  constexpr std::string_view kSample = "\"the text\"";
  const std::string line = renderPlainLine(layout, u"the text");
  const std::size_t place = line.find(kSample);
  beforeText = line.substr(0, place);
  afterText = line.substr(place + kSample.size());
}

void NodeJson::writeMember(const session::ParsedSnippet& parsed, const progress::Stage& stage) {
  json.key(kNodesKey);
  json.beginArray();
  session::NodeCursor nodes(parsed);
  const std::uint64_t total = nodes.count();
  for (std::uint64_t number = 0; nodes.advance(); ++number) {
    if (number % progress::kStepsPerShow == 0) stage.show(number, total);
    const Node& node = nodes.node();
    if (number != 0 && session::isPlainLine(node)) {
      writePlainLine(session::textOf(node->getChildren()[0]));
    } else {
      NodeWriter(json).write(node);
    }
    output.flushIfLarge();
  }
  json.endArray();
}

void NodeJson::writePlainLine(std::u16string_view text) {
  if (text.empty()) {
    output.text() += emptyLine;
    return;
  }
  output.text() += beforeText;
  foundation::json::appendQuoted(output.text(), text);
  output.text() += afterText;
}

}  // namespace tessera::formats
