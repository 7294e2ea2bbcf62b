#pragma once

#include <string>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "foundation/json/Writer.hpp"
#include "tessera/files/OutputFile.hpp"

namespace tessera::formats {

/// Writes a document's nodes as JSON.
class NodeJson {
 public:
  /// Borrows both; `writer` writes to the text of `file` in the form `spelling`.
  NodeJson(files::OutputFile& file, foundation::json::Writer& writer,
           foundation::json::Form spelling);

  /// Writes the member "nodes" of an outermost object. Throws OutputError.
  void writeMember(const kd::zero::ElementSequence<document::kdzero::Node>& nodes);

 private:
  void writePlainLine(std::u16string_view text);

  files::OutputFile& output;
  foundation::json::Writer& json;
  // What stands around the text of a plain line that is not the first. Most lines are plain, and to
  // put these together anew for each would take ten times as long as to copy them.
  std::string beforeText;
  std::string behindText;
};

}  // namespace tessera::formats
