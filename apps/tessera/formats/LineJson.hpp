#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/json/Writer.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/formats/DocumentWriter.hpp"

namespace tessera::formats {

/// Writes the lines of a document as JSON.
class LineJson {
 public:
  /// Borrows both; `writer` writes to the text of `file` in the form `spelling`.
  LineJson(files::OutputFile& file, foundation::json::Writer& writer,
           foundation::json::Form spelling, Records showRecords)
      : output(file), json(writer), form(spelling), records(showRecords) {}

  /// Writes the member "lines" of an outermost object. Throws OutputError.
  void writeMember(const FileResult& result);

 private:
  using Line = session::LineTable::Line;

  /// A number in the text of the pattern.
  struct Number {
    std::uint64_t value = 0;
    std::size_t end = 0;
  };

  /// The JSON of a line that added one node, as it stands behind that of another line. What lines
  /// alike differ in are these numbers only; they count on in their places.
  struct Pattern {
    const session::LineOutcome* outcome = nullptr;
    std::string text;
    Number line;
    Number node;
  };

  void writeLine(const Line& line, const FileResult& result);
  bool fitPattern(const Line& line);
  bool countTo(Number& number, std::uint64_t value);
  void makePattern(const Line& line, const FileResult& result);
  void writeThroughNodes(foundation::json::Writer& target, const Line& line,
                         const FileResult& result) const;
  void writeRest(foundation::json::Writer& target, const Line& line) const;

  files::OutputFile& output;
  foundation::json::Writer& json;
  foundation::json::Form form;
  Records records;
  Pattern pattern;
  const session::LineOutcome* previous = nullptr;
};

}  // namespace tessera::formats
