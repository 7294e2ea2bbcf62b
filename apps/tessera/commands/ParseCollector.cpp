#include "tessera/commands/ParseCollector.hpp"

#include "tessera/commands/ParseJob.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/report.hpp"

namespace tessera::commands {
namespace {

constexpr std::size_t kLargePieceBytes = 64 * 1024;

}  // namespace

void ParseCollector::addText(std::string_view piece) {
  writtenBytes += piece.size();
  if (piece.size() >= kLargePieceBytes) return output.writeThrough(piece);
  // Small documents are written together.
  output.text() += piece;
  output.flushIfLarge();
}

void ParseCollector::report(std::string_view message) {
  output.flush();
  diagnostics::report(message);
}

void ParseCollector::endInput(std::size_t /*index*/, workers::Outcome outcome) {
  writtenBytes = 0;
  if (outcome == workers::Outcome::kFailed) exitStatus = kInputsFailed;
}

void ParseCollector::loseInput(std::size_t index, const workers::Loss& loss) {
  const std::string& file = inputs[index].path;
  const diagnostics::ProblemError error(
      {.file = file,
       .place =
           loss.line == 0 ? std::optional<diagnostics::Place>() : diagnostics::Place{loss.line, 1},
       .what = "no document could be made: " + loss.reason,
       .remedy = "leave the bundle out that causes it, or report it with the calls that --record "
                 "writes"});
  output.flush();
  if (writtenBytes != 0 && !output.takeBack(writtenBytes)) {
    throw diagnostics::OutputError(
        {.file = file,
         .place = {},
         .what = "the output ends within its document: " + loss.reason,
         .remedy = "write to a file (-o), then such a part is removed and the run goes on"});
  }
  report(error.what());
  appendProblem(output.text(), options, error.problem());
  endInput(index, workers::Outcome::kFailed);
}

}  // namespace tessera::commands
