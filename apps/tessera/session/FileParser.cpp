#include "tessera/session/FileParser.hpp"

#include <optional>
#include <utility>
#include <vector>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/source/readAppendix.hpp"

namespace tessera::session {
namespace {

std::vector<fl::i18n::ustring> textsOf(const std::vector<quenlith::syntax::Marker>& markers) {
  std::vector<fl::i18n::ustring> texts;
  texts.reserve(markers.size());
  for (const auto& marker : markers) texts.push_back(marker.toString());
  return texts;
}

[[noreturn]] void throwProblem(const std::string& file, const ParserError& error) {
  std::optional<diagnostics::Place> place;
  if (error.line() != 0) place = diagnostics::Place{error.line(), 1};
  throw diagnostics::ProblemError(
      {.file = file,
       .place = place,
       .what = error.parser().empty() ? error.what() : error.parser() + ' ' + error.what(),
       .remedy = "leave out bundles, or report it with the calls that --record writes"});
}

}  // namespace

ParsedFile FileParser::parse(const std::string& name, source::SourceText source) {
  ParsedFile file;
  file.source = std::move(source);
  const std::vector<quenlith::syntax::Marker> entries = source::readAppendix(file.source);
  appendix.replace(entries);
  if (recording != nullptr) recording->begin(textsOf(entries), file.source.code.text);
  try {
    file.snippet = session.parse(std::move(file.source.code));
  } catch (const ParserError& error) {
    throwProblem(name, error);
  }
  if (recording != nullptr) recording->end();
  return file;
}

}  // namespace tessera::session
