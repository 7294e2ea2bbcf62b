#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/json/Writer.hpp"
#include "tessera/files/OutputText.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/formats/JsonLayout.hpp"

namespace tessera::formats {

/// Writes the lines of a document as JSON.
class LineJson {
 public:
  /// Borrows both; `json` writes to the text of `output` in the layout `layout`.
  LineJson(files::OutputText& output, foundation::json::Writer& json, JsonLayout layout,
           Records records)
      : output(output), json(json), layout(layout), records(records) {}

  /// Writes the member "lines" of an outermost object. Throws OutputError.
  void writeMember(const FileResult& result);

 private:
  using Line = session::LineTable::Line;

  /// The JSON of a line that added one node, with a comma before it and without its two numbers:
  /// similar lines differ only in these.
  struct Pattern {
    /// Null when there is no pattern.
    const session::LineOutcome* outcome = nullptr;
    std::string beforeLine;
    std::string beforeNode;
    std::string afterNode;
  };

  void writeLine(const Line& line, const FileResult& result);
  bool matchesPattern(const Line& line);
  void makePattern(const Line& line, const FileResult& result);
  void appendPattern(const Line& line);
  void writeThroughNodes(foundation::json::Writer& target, const Line& line,
                         const FileResult& result) const;
  void writeRest(foundation::json::Writer& target, const Line& line) const;

  files::OutputText& output;
  foundation::json::Writer& json;
  JsonLayout layout;
  Records records;
  Pattern pattern;
  // The outcome of the line written last.
  const session::LineOutcome* previous = nullptr;
};

}  // namespace tessera::formats
