#pragma once

#include <string>
#include <vector>

#include "tessera/progress/InputProgress.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::formats {

/// Whether the records that the parsers emitted are written too.
enum class Records { kHidden, kShown };

/// One parsed file, borrowed.
struct FileResult {
  /// As the user named it.
  const std::string& file;
  const session::ParsedSnippet& parsed;
  /// The parsers that the outcomes of lines refer to.
  const std::vector<session::NamedParser>& parsers;
  /// What writing it is of the work on the file.
  progress::Stage stage = {};
};

/// Writes parsed files in one format.
class DocumentWriter {
 public:
  virtual ~DocumentWriter() = default;

  /// Writes `result`. Throws OutputError when the output cannot be written.
  virtual void write(const FileResult& result) = 0;
};

}  // namespace tessera::formats
