#include "tessera/files/ByteLines.hpp"

namespace tessera::files {
namespace {

constexpr std::size_t kChunkBytes = 64 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::optional<std::string_view> ByteLines::next() {
  std::size_t searched = begin;
  std::size_t end = buffered.find('\n', searched);
  while (end == buffered.npos) {
    const std::size_t before = buffered.size() - begin;
    if (!readMore()) break;
    searched = before;
    end = buffered.find('\n', searched);
  }
  if (end == buffered.npos && begin == buffered.size()) return std::nullopt;
  std::string_view line = std::string_view(buffered).substr(begin, end - begin);
  begin = end == buffered.npos ? buffered.size() : end + 1;
  if (atStart && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
  atStart = false;
  return line;
}

/// Moves the bytes that are still to be returned to the front and reads more after them.
bool ByteLines::readMore() {
  buffered.erase(0, begin);
  begin = 0;
  const std::size_t before = buffered.size();
  buffered.resize(before + kChunkBytes);
  const std::size_t count = reader.read(buffered.data() + before, kChunkBytes);
  buffered.resize(before + count);
  return count != 0;
}

}  // namespace tessera::files
