#pragma once

#include <string>

#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/session/SnippetSession.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::session {

/// One file, parsed.
struct ParsedFile {
  ParsedSnippet snippet;
  /// The text of the file. Its code is in `snippet`.
  source::SourceText source;
};

/// Parses the code of files in a session, after their appendix is set.
class FileParser {
 public:
  using Appendix = quenlith::shared::appendix::MarkerAppendix;

  /// Borrows all; `recording` may be null and is the session's.
  FileParser(SnippetSession& session, Appendix& appendix, Recording* recording)
      : session(session), appendix(appendix), recording(recording) {}

  /// Parses the text of the file `name`. Throws ProblemError when a parser throws, and OutputError
  /// when the calls cannot be recorded.
  ParsedFile parse(const std::string& name, source::SourceText source);

 private:
  SnippetSession& session;
  Appendix& appendix;
  Recording* recording;
};

}  // namespace tessera::session
