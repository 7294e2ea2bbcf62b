#pragma once

#include <string>

#include "tessera/appendix/FileAppendix.hpp"
#include "tessera/appendix/readAppendix.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/session/SnippetSession.hpp"

namespace tessera::commands {

/// One file, read and parsed.
struct ParsedFile {
  session::ParsedSnippet snippet;
  appendix::Appendix appendix;
};

/// Reads files and hands their code to a session, with their appendix in place.
class FileParser {
 public:
  /// Borrows all; `callRecording` may be null and is the session's.
  FileParser(session::SnippetSession& lineSession, appendix::FileAppendix& appendixService,
             session::Recording* callRecording)
      : session(lineSession), service(appendixService), recording(callRecording) {}

  /// Parses the file `name`, "-" for standard input. Throws ProblemError when it cannot be
  /// read or a parser throws, and OutputError when the calls cannot be recorded.
  ParsedFile parse(const std::string& name);

 private:
  session::SnippetSession& session;
  appendix::FileAppendix& service;
  session::Recording* recording;
};

}  // namespace tessera::commands
