#pragma once

#include <string>

#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/session/SnippetSession.hpp"
#include "tessera/source/SourceText.hpp"

namespace tessera::session {

/// One file, read and parsed.
struct ParsedFile {
  ParsedSnippet snippet;
  /// The text of the file. Its code is in `snippet`.
  source::SourceText source;
};

/// Reads files and parses their code in a session, after their appendix is set.
class FileParser {
 public:
  using Appendix = quenlith::shared::appendix::MarkerAppendix;

  /// Borrows all; `recording` may be null and is the session's.
  FileParser(SnippetSession& session, Appendix& appendix, Recording* recording)
      : session(session), appendix(appendix), recording(recording) {}

  /// Parses the file `name`, "-" for standard input. Throws ProblemError when it cannot be
  /// read or a parser throws, and OutputError when the calls cannot be recorded.
  ParsedFile parse(const std::string& name);

  /// Like `parse`, but with the text of the file, which is known already.
  ParsedFile parse(const std::string& name, source::SourceText source);

 private:
  SnippetSession& session;
  Appendix& appendix;
  Recording* recording;
};

}  // namespace tessera::session
