#pragma once

#include <string>

#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/session/SnippetSession.hpp"
#include "tessera/source/readAppendix.hpp"

namespace tessera::session {

/// One file, read and parsed.
struct ParsedFile {
  ParsedSnippet snippet;
  source::Appendix appendix;
};

/// Reads files and hands their code to a session, with their appendix in place.
class FileParser {
 public:
  using Appendix = quenlith::shared::appendix::MarkerAppendix;

  /// Borrows all; `callRecording` may be null and is the session's.
  FileParser(SnippetSession& lineSession, Appendix& appendixService, Recording* callRecording)
      : session(lineSession), service(appendixService), recording(callRecording) {}

  /// Parses the file `name`, "-" for standard input. Throws ProblemError when it cannot be
  /// read or a parser throws, and OutputError when the calls cannot be recorded.
  ParsedFile parse(const std::string& name);

 private:
  SnippetSession& session;
  Appendix& service;
  Recording* recording;
};

}  // namespace tessera::session
