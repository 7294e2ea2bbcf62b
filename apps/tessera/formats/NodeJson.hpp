#pragma once

#include <string>
#include <string_view>

#include "foundation/json/Writer.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/formats/JsonLayout.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::formats {

/// Writes a document's nodes as JSON.
class NodeJson {
 public:
  /// Borrows both; `json` writes to the text of `output` in the layout `layout`.
  NodeJson(files::OutputText& output, foundation::json::Writer& json, JsonLayout layout);

  /// Writes the member "nodes" of an outermost object, and shows the progress in `stage`. Throws
  /// OutputError.
  void writeMember(const session::ParsedSnippet& parsed, const progress::Stage& stage);

 private:
  void writePlainLine(std::u16string_view text);

  files::OutputText& output;
  foundation::json::Writer& json;
  // The JSON before and after the text of a plain line that is not the first node. Most lines are
  // plain, and copying these parts is several times as fast as writing every member anew.
  std::string beforeText;
  std::string afterText;
  // The JSON of a plain line without text.
  std::string emptyLine;
};

}  // namespace tessera::formats
