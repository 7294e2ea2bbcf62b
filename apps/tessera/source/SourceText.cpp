#include "tessera/source/SourceText.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include "fl/i18n/search.hpp"
#include "quenlith/syntax/markers.hpp"
#include "tessera/source/SourceDecoder.hpp"

namespace tessera::source {
namespace {

/// A line of a text: its offset and its length without the ending.
struct LineSpan {
  std::size_t begin = 0;
  std::size_t length = 0;
};

LineSpan lineAround(std::u16string_view text, std::size_t at) {
  const std::size_t before = text.substr(0, at).rfind(u'\n');
  const std::size_t begin = before == text.npos ? 0 : before + 1;
  return {begin, fl::i18n::findAny<u'\n'>(text.substr(begin))};
}

/// Returns the first line that starts an appendix.
std::optional<LineSpan> findAppendixLine(std::u16string_view text) {
  using fl::i18n::findPair;
  std::size_t at = findPair<u'<', u'@'>(text);
  while (at != text.size()) {
    const LineSpan line = lineAround(text, at);
    if (quenlith::syntax::isAppendixLine(text.substr(line.begin, line.length))) return line;
    at = findPair<u'<', u'@'>(text, line.begin + line.length);
  }
  return std::nullopt;
}

}  // namespace

SourceText splitSource(std::u16string text) {
  SourceText source;
  source.code.any = !text.empty();
  if (text.ends_with(u'\n')) text.pop_back();
  if (const auto line = findAppendixLine(text)) {
    const std::size_t end = line->begin + line->length;
    source.appendix.any = end < text.size();
    if (source.appendix.any) source.appendix.text = text.substr(end + 1);
    source.appendixLineText = text.substr(line->begin, line->length);
    source.appendixLine = endOf({text.data(), line->begin}).line;
    source.code.any = line->begin != 0;
    text.resize(line->begin == 0 ? 0 : line->begin - 1);
  }
  source.code.text = std::move(text);
  return source;
}

SourceText readSource(files::FileReader& reader) {
  SourceDecoder decoder(reader.path(), reader.expectedSizeBytes());
  const auto buffer = std::make_unique_for_overwrite<char[]>(SourceDecoder::kChunkBytes);
  std::size_t unused = 0;
  while (const std::size_t count =
             reader.read(buffer.get() + unused, SourceDecoder::kChunkBytes - unused)) {
    unused += count;
    const std::size_t used = decoder.append({buffer.get(), unused});
    std::copy(buffer.get() + used, buffer.get() + unused, buffer.get());
    unused -= used;
  }
  return splitSource(decoder.finish({buffer.get(), unused}));
}

SourceText decodeSource(const std::string& name, std::string_view bytes) {
  SourceDecoder decoder(name, bytes.size());
  while (bytes.size() > SourceDecoder::kChunkBytes) {
    bytes.remove_prefix(decoder.append(bytes.substr(0, SourceDecoder::kChunkBytes)));
  }
  return splitSource(decoder.finish(bytes));
}

}  // namespace tessera::source
