#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/FileReader.hpp"
#include "tessera/files/standardStreams.hpp"
#include "tessera/host/ServiceHost.hpp"
#include "tessera/inputs/Input.hpp"
#include "tessera/session/FileParser.hpp"
#include "tessera/session/LogCollector.hpp"
#include "tessera/session/Recording.hpp"
#include "tessera/workers/Job.hpp"

namespace tessera::run {

/// The parsers of a job.
struct ParserSetup {
  const std::vector<std::string>& bundles;
  host::Pieces pieces = host::Pieces::kKept;
  /// Whether the records that the parsers emit are kept.
  bool keepsRecords = false;
  /// May be null.
  session::Recording* recording = nullptr;
  /// Whether the nodes of most plain lines are not kept (`SnippetSession::sparePlainLines`).
  bool sparesPlainLines = false;
  /// How much of the work on a file is done once it is parsed.
  std::uint64_t parsingShare = progress::InputProgress::kWhole;
};

/// Parses files and does something with each. Starts a framework in the process that makes it.
class FileJob : public workers::Job {
 public:
  /// Skips what `inputs::isLeftOut` leaves out. Throws OutputError.
  workers::Outcome run(std::size_t index) final;
  /// Regular files are.
  bool isRepeatable(std::size_t index) const final;

 protected:
  /// Borrows all. Throws ProblemError when the services cannot be used.
  FileJob(const ParserSetup& setup, const std::vector<inputs::Input>& inputs,
          const workers::JobContext& context);

  /// Works on the file `path`, which it parses before it writes anything. Throws ProblemError when
  /// the file cannot be used, and OutputError.
  virtual void work(const std::string& path) = 0;
  /// The file cannot be used; the user was told.
  virtual void addProblem(const diagnostics::Problem& /*problem*/) {}

  /// The index of the input that is worked on.
  std::size_t currentInput() const noexcept { return current; }
  const inputs::Input& input() const noexcept { return inputs[current]; }

  /// Reads and parses the current input, whose path is `path`, or skips it, as `skipIfLeftOut`
  /// does. Throws ProblemError, and OutputError when the calls cannot be recorded.
  session::ParsedFile parse(const std::string& path);
  /// Like that, but `bytes` is the content, binary or not.
  session::ParsedFile parse(const std::string& path, std::string_view bytes);
  /// Skips the file, which is the current input and was not read yet, if it is one that is left
  /// out: throws what only `run` catches.
  void skipIfLeftOut(files::FileReader& file) const;

  const std::vector<session::NamedParser>& parsers() const noexcept { return session.parsers(); }
  /// Returns whether a parser of a bundle accepts the marker. Throws ProblemError when one throws.
  bool isAccepted(const quenlith::syntax::Marker& marker);
  files::OutputText& output() noexcept { return text; }
  workers::Messages& messages() noexcept { return messageTarget; }

  /// Returns what `step` returns. Without memory for it, or when something would be larger than it
  /// may ever be, only the file `path` is lost: throws ProblemError. `step` must not write a part
  /// of the output.
  template <typename Step>
  static auto loseWithoutMemory(const std::string& path, Step step) {
    try {
      return step();
    } catch (const std::bad_alloc&) {
      failWithoutMemory(path);
    } catch (const std::length_error&) {
      failAsTooLarge(path);
    }
  }

 private:
  [[noreturn]] static void failWithoutMemory(const std::string& path);
  [[noreturn]] static void failAsTooLarge(const std::string& path);

  const std::vector<inputs::Input>& inputs;
  files::StreamFiles streams;
  std::size_t current = 0;
  files::OutputText& text;
  workers::Messages& messageTarget;
  host::ServiceHost host;
  bool isRecorded;
  std::unique_ptr<session::LogCollector> log;
  session::SnippetSession session;
  session::FileParser parser;
  // Looked up when they are needed: a run that only parses does not.
  std::optional<std::vector<std::shared_ptr<quenlith::build::markup::code::CodeElementParser>>>
      elementParsers;
};

}  // namespace tessera::run
