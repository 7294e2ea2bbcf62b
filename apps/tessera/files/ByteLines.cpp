#include "tessera/files/ByteLines.hpp"

namespace tessera::files {
namespace {

constexpr std::size_t kChunkBytes = 64 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::optional<std::string_view> ByteLines::next() {
  std::size_t searched = begin;
  std::size_t end = held.find('\n', searched);
  while (end == held.npos) {
    const std::size_t before = held.size() - begin;
    if (!readMore()) break;
    searched = before;
    end = held.find('\n', searched);
  }
  if (end == held.npos && begin == held.size()) return std::nullopt;
  std::string_view line = std::string_view(held).substr(begin, end - begin);
  begin = end == held.npos ? held.size() : end + 1;
  if (atStart && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
  atStart = false;
  return line;
}

/// Moves what is still to be returned to the front and reads behind it.
bool ByteLines::readMore() {
  held.erase(0, begin);
  begin = 0;
  const std::size_t before = held.size();
  held.resize(before + kChunkBytes);
  const std::size_t count = reader.read(held.data() + before, kChunkBytes);
  held.resize(before + count);
  return count != 0;
}

}  // namespace tessera::files
