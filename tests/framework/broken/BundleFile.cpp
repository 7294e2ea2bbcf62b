#include "BundleFile.hpp"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>

namespace {

// The layout is defined by PKWARE's APPNOTE.TXT, version 2.0, method 0 ("stored").
class Writer {
 public:
  Writer& half(std::size_t value) { return number(value, 2); }
  Writer& word(std::size_t value) { return number(value, 4); }
  Writer& text(const std::string& value) {
    bytes += value;
    return *this;
  }

  std::string bytes;

 private:
  Writer& number(std::size_t value, int size) {
    for (int place = 0; place < size; ++place) {
      bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * place)));
    }
    return *this;
  }
};

std::uint32_t checksum(const std::string& content) {
  std::uint32_t sum = 0xFFFFFFFFU;
  for (const char byte : content) {
    sum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

// The fields that a file's local header and its central directory entry share.
void writeCommon(Writer& out, const std::string& name, const std::string& content) {
  out.half(20).half(0).half(0).half(0).half(0x21);
  out.word(checksum(content)).word(content.size()).word(content.size());
  out.half(name.size()).half(0);
}

}  // namespace

std::string makeArchive(const std::vector<std::pair<std::string, std::string>>& files,
                        std::size_t offset) {
  Writer entries;
  Writer directory;
  for (const auto& [name, content] : files) {
    const std::size_t place = offset + entries.bytes.size();
    entries.word(0x04034B50);
    writeCommon(entries, name, content);
    entries.text(name).text(content);
    directory.word(0x02014B50).half(20);
    writeCommon(directory, name, content);
    directory.half(0).half(0).half(0).word(0).word(place).text(name);
  }
  Writer end;
  end.word(0x06054B50).half(0).half(0).half(files.size()).half(files.size());
  end.word(directory.bytes.size()).word(offset + entries.bytes.size()).half(0);
  return entries.bytes + directory.bytes + end.bytes;
}

std::string readBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
