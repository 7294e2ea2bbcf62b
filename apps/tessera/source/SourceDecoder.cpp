#include "tessera/source/SourceDecoder.hpp"

#include <sys/mman.h>

#include <algorithm>
#include <utility>

#include "fl/i18n/search.hpp"
#include "fl/i18n/utf8.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/source/lines.hpp"

namespace tessera::source {
namespace {

/// Returns the length in bytes of a character that starts with `lead`; 1 if no character does.
std::size_t lengthFrom(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  return lead >= 0xC0 ? 2 : 1;
}

/// Returns how many bytes at the end of `bytes` begin a character that may continue after them.
std::size_t unfinishedTail(std::string_view bytes) {
  const std::size_t furthest = std::min<std::size_t>(3, bytes.size());
  for (std::size_t back = 1; back <= furthest; ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if ((byte & 0xC0) == 0x80) continue;
    return lengthFrom(byte) > back ? back : 0;
  }
  return 0;
}

/// Asks for large pages from `begin` on. Faulting in each small page of a large text takes longer
/// than filling it.
void useLargePages(void* begin, std::size_t sizeBytes) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20;
  if (std::align(kLargePage, kLargePage, begin, sizeBytes) != nullptr) {
    ::madvise(begin, sizeBytes, MADV_HUGEPAGE);
  }
}

std::string hexOf(unsigned char byte) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  return {'0', 'x', kHex[byte >> 4], kHex[byte & 0xF]};
}

}  // namespace

SourceDecoder::SourceDecoder(std::string file, std::size_t expectedBytes)
    : file(std::move(file)), units(std::make_unique_for_overwrite<char16_t[]>(kChunkBytes)) {
  // A text never has more units than bytes; unused capacity is never touched.
  text.reserve(expectedBytes);
  useLargePages(text.data(), expectedBytes * sizeof(char16_t));
}

std::size_t SourceDecoder::append(std::string_view bytes) {
  const std::size_t used = bytes.size() - unfinishedTail(bytes);
  convert(bytes.substr(0, used));
  return used;
}

std::u16string SourceDecoder::finish(std::string_view bytes) {
  convert(bytes);
  return std::move(text);
}

void SourceDecoder::convert(std::string_view bytes) {
  const fl::i18n::Utf8Conversion done = fl::i18n::convertUtf8(bytes, units.get());
  if (!done.firstInvalid) return appendUnits(done.length);
  // The text before the invalid byte gives its place.
  const std::size_t valid = *done.firstInvalid;
  appendUnits(fl::i18n::convertUtf8(bytes.substr(0, valid), units.get()).length);
  fail(static_cast<unsigned char>(bytes[valid]));
}

void SourceDecoder::appendUnits(std::size_t count) {
  std::u16string_view converted(units.get(), count);
  if (atStart && converted.starts_with(u'\uFEFF')) converted.remove_prefix(1);
  if (count != 0) atStart = false;
  const std::size_t before = text.size();
  text.append(converted);
  if (fl::i18n::findAny<u'\r'>(converted) != converted.size() || lastWasReturn)
    joinLineEndings(before);
  lastWasReturn = text.ends_with(u'\r');
}

void SourceDecoder::joinLineEndings(std::size_t from) {
  std::size_t write = from;
  for (std::size_t read = from; read < text.size(); ++read) {
    if (text[read] == u'\n' && write > 0 && text[write - 1] == u'\r') --write;
    text[write++] = text[read];
  }
  text.resize(write);
}

void SourceDecoder::fail(unsigned char byte) const {
  throw diagnostics::ProblemError({.file = file,
                                   .place = endOf(text),
                                   .what = "byte " + hexOf(byte) + " is not valid UTF-8",
                                   .remedy = "convert the file to UTF-8"});
}

}  // namespace tessera::source
