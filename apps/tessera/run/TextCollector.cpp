#include "tessera/run/TextCollector.hpp"

#include <optional>
#include <utility>

#include "tessera/diagnostics/report.hpp"

namespace tessera::run {
namespace {

constexpr std::size_t kLargePieceBytes = 64 * 1024;

const char* remedyFor(workers::Loss::Cause cause) {
  switch (cause) {
    case workers::Loss::Cause::kLate:
      return "allow more time with --timeout, or leave out the file or the bundle that needs it";
    case workers::Loss::Cause::kKilled:
      return "if there was not enough memory, use fewer processes (-j), or leave out the file";
    default:
      return "leave out the bundle that causes this, or report it with the calls that tessera "
             "parse --record writes";
  }
}

}  // namespace

TextCollector::TextCollector(const std::vector<inputs::Input>& inputs, files::OutputFile& output,
                             LossText lossText, std::string_view separator)
    : inputs(inputs), output(output), lossText(std::move(lossText)), separator(separator) {}

void TextCollector::addText(std::string_view piece) {
  if (hasText && writtenBytes == 0) {
    output.text() += separator;
    writtenBytes += separator.size();
  }
  writtenBytes += piece.size();
  if (piece.size() >= kLargePieceBytes) return output.writeThrough(piece);
  // Small texts are written together.
  output.text() += piece;
  output.flushIfLarge();
}

void TextCollector::addMessage(std::string_view message) {
  output.flush();
  diagnostics::report(message);
}

void TextCollector::endInput(std::size_t /*index*/, workers::Outcome outcome) {
  hasText |= writtenBytes != 0;
  writtenBytes = 0;
  failed |= outcome == workers::Outcome::kFailed;
}

void TextCollector::loseInput(std::size_t index, const workers::Loss& loss) {
  const std::string& file = inputs[index].path;
  const diagnostics::ProblemError error(problemOf(file, lossText.what, loss));
  output.flush();
  if (writtenBytes != 0 && !output.takeBack(writtenBytes)) {
    throw diagnostics::OutputError(
        {.file = file,
         .place = {},
         .what = "the output of this file is incomplete: " + loss.reason,
         .remedy = "write to a file (-o), then such a part is removed and the run goes on"});
  }
  writtenBytes = 0;
  addMessage(error.what());
  if (lossText.appendRecord) lossText.appendRecord(output.text(), error.problem());
  endInput(index, workers::Outcome::kFailed);
}

diagnostics::Problem problemOf(const std::string& file, const std::string& what,
                               const workers::Loss& loss) {
  std::optional<diagnostics::Place> place;
  if (loss.line != 0) place = diagnostics::Place{loss.line, 1};
  return {.file = file,
          .place = place,
          .what = what + ": " + loss.reason,
          .remedy = remedyFor(loss.cause)};
}

}  // namespace tessera::run
