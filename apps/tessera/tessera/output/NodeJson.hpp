#pragma once

#include "document/kdzero/Node.hpp"
#include "foundation/json/Writer.hpp"
#include "tessera/output/OutputFile.hpp"

namespace tessera::output {

/// Writes nodes as JSON.
class NodeJson {
 public:
  /// Borrows both; `writer` writes to the text of `file`.
  NodeJson(OutputFile& file, foundation::json::Writer& writer) : output(file), json(writer) {}

  /// Writes the array of `nodes`. A loop: nodes may nest as deep as memory allows. Throws
  /// OutputError when the output cannot be written.
  void writeNodes(const kd::zero::ElementSequence<document::kdzero::Node>& nodes);

 private:
  void beginNode(const document::kdzero::Node& node);
  void endNode(const document::kdzero::Node& node);
  void writeTask(const document::kdzero::Node& node);
  void writeContributorData(const document::kdzero::Node& node);
  void writeFailures(const document::kdzero::Node& node);
  void member(std::string_view key, std::u16string_view text);

  OutputFile& output;
  foundation::json::Writer& json;
};

}  // namespace tessera::output
