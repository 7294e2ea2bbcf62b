#pragma once

#include <string>
#include <vector>

#include "foundation/json/Writer.hpp"
#include "tessera/output/DocumentWriter.hpp"
#include "tessera/output/OutputFile.hpp"

namespace tessera::output {

/// Writes the lines of a document as JSON.
class LineJson {
 public:
  /// Borrows both; `writer` writes to the text of `file` in the form `spelling`.
  LineJson(OutputFile& file, foundation::json::Writer& writer, foundation::json::Form spelling,
           Records showRecords)
      : output(file), json(writer), form(spelling), records(showRecords) {}

  /// Writes the member "lines" of an outermost object. Throws OutputError.
  void writeMember(const FileResult& result);

 private:
  using Line = session::LineTable::Line;

  /// A line's JSON, cut at its number and at the index of its one node.
  struct Pattern {
    const session::LineOutcome* outcome = nullptr;
    std::string beforeNumber;
    std::string beforeNode;
    std::string behindNode;
  };

  void writeLine(const Line& line, const FileResult& result);
  void writeWhole(foundation::json::Writer& target, const Line& line,
                  const FileResult& result) const;
  void writePattern(const Line& line);
  Pattern makePattern(const Line& line, const FileResult& result) const;

  OutputFile& output;
  foundation::json::Writer& json;
  foundation::json::Form form;
  Records records;
  // Of the outcome that more than one line shares; lines alike differ in these numbers only.
  Pattern pattern;
  const session::LineOutcome* previous = nullptr;
};

}  // namespace tessera::output
