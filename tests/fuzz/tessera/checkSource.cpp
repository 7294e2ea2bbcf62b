#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "TextTwin.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/source/SourceDecoder.hpp"
#include "tessera/source/SourceText.hpp"

namespace quenlith::fuzz {

using tessera::source::SourceDecoder;
using tessera::source::SourceText;

namespace {

// The text of a file by ICU; nothing if the bytes are not UTF-8.
std::optional<std::u16string> decodeByIcu(std::string_view bytes) {
  const fl::i18n::twin::Decoded decoded = fl::i18n::twin::decodeUtf8(bytes);
  if (decoded.firstInvalid) return std::nullopt;
  std::u16string text = decoded.text;
  if (text.starts_with(u'\uFEFF')) text.erase(0, 1);
  for (auto at = text.find(u"\r\n"); at != text.npos; at = text.find(u"\r\n", at))
    text.erase(at, 1);
  return text;
}

std::optional<std::u16string> decodeInPieces(std::string_view bytes, std::size_t pieceBytes) {
  SourceDecoder decoder("a.py", bytes.size());
  try {
    std::string piece;
    while (!bytes.empty()) {
      const std::string_view next = bytes.substr(0, pieceBytes);
      bytes.remove_prefix(next.size());
      piece += next;
      piece.erase(0, decoder.append(piece));
    }
    return decoder.finish(piece);
  } catch (const tessera::diagnostics::ProblemError&) {
    return std::nullopt;
  }
}

std::vector<std::u16string> splitLines(std::u16string_view text) {
  std::vector<std::u16string> lines;
  while (!text.empty()) {
    const std::u16string_view line = text.substr(0, text.find(u'\n'));
    lines.emplace_back(line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return lines;
}

std::vector<std::u16string> linesOf(const tessera::source::JoinedLines& joined) {
  std::vector<std::u16string> lines;
  tessera::source::LineCursor cursor(joined.text, joined.any);
  while (const auto line = cursor.next()) lines.emplace_back(*line);
  return lines;
}

void checkSplit(const std::u16string& text) {
  const std::vector<std::u16string> lines = splitLines(text);
  const auto start = std::ranges::find_if(lines, syntax::isAppendixLine);
  const SourceText source = tessera::source::splitSource(text);
  require(std::ranges::equal(linesOf(source.code), std::vector(lines.begin(), start)),
          "the lines before the appendix are code");
  const bool hasAppendix = start != lines.end();
  require(source.appendixLine ==
              (hasAppendix ? static_cast<std::uint64_t>(start - lines.begin()) + 1 : 0),
          "the line that starts the appendix is counted");
  if (!hasAppendix) {
    require(source.appendixLineText.empty() && !source.appendix.any, "there is no appendix");
    return;
  }
  require(source.appendixLineText == *start, "the line that starts the appendix is kept");
  require(std::ranges::equal(linesOf(source.appendix), std::vector(start + 1, lines.end())),
          "the lines after it are the appendix");
}

}  // namespace

void checkSource(std::string_view input) {
  Choices choices(input);
  // A piece must have room for a whole character.
  const std::size_t pieceBytes = choices.below(32) + 4;
  const std::string_view bytes = choices.rest();
  const auto twin = decodeByIcu(bytes);
  require(decodeInPieces(bytes, pieceBytes) == twin, "ICU decodes the same text");
  require(decodeInPieces(bytes, SourceDecoder::kChunkBytes) == twin, "pieces make no difference");
  if (twin) checkSplit(*twin);
}

}  // namespace quenlith::fuzz
