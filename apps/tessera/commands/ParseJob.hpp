#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "tessera/commands/Options.hpp"
#include "tessera/formats/DocumentWriter.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/session/LogCollector.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::commands {

/// Parses files and writes their documents. Starts a framework in the process that makes it.
class ParseJob final : public workers::Job {
 public:
  /// Borrows all; `recording` may be null. Throws ProblemError when the services cannot be used.
  ParseJob(const ParseOptions& options, const std::vector<inputs::Input>& inputs,
           session::Recording* recording, const workers::JobContext& context);

  /// Throws OutputError.
  workers::Outcome run(std::size_t index) override;

 private:
  session::ParsedFile read(const std::string& path);
  void parse(const std::string& path);
  workers::Outcome fail(const diagnostics::ProblemError& error);

  const ParseOptions& options;
  const std::vector<inputs::Input>& inputs;
  files::OutputText& output;
  workers::Messages& messages;
  host::ServiceHost host;
  std::unique_ptr<session::LogCollector> log;
  session::SnippetSession session;
  session::FileParser parser;
  std::unique_ptr<formats::DocumentWriter> writer;
};

/// Appends the record that `problem` gives, if the format has records of files without a document.
void appendProblem(std::string& text, const ParseOptions& options,
                   const diagnostics::Problem& problem);

}  // namespace tessera::commands
