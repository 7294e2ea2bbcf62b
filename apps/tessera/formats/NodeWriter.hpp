#pragma once

#include <string_view>

#include "document/kdzero/Node.hpp"
#include "foundation/json/Writer.hpp"

namespace tessera::formats {

/// Writes a node and everything below it as JSON.
class NodeWriter {
 public:
  /// Borrows `json`.
  explicit NodeWriter(foundation::json::Writer& json) : json(json) {}

  /// Writes `top`. A loop: nodes may nest as deep as memory allows.
  void write(const document::kdzero::Node& top);

 private:
  void beginNode(const document::kdzero::Node& node);
  void endNode(const document::kdzero::Node& node);
  void writePiece(const document::kdzero::Node& node);
  void writeTask(const document::kdzero::Node& node);
  void writeContributorData(const document::kdzero::Node& node);
  void writeFailures(const document::kdzero::Node& node);
  void member(std::string_view key, std::u16string_view text);

  foundation::json::Writer& json;
};

}  // namespace tessera::formats
