#include "tessera/files/readWhole.hpp"

#include <cstddef>
#include <utility>
#include <vector>

#include "tessera/files/FileReader.hpp"

namespace tessera::files {
namespace {

std::string readAll(FileReader& reader) {
  std::string bytes;
  // Not on the stack, which may be small.
  std::vector<char> piece(64 * 1024);
  while (const std::size_t count = reader.read(piece.data(), piece.size())) {
    bytes.append(piece.data(), count);
  }
  return bytes;
}

}  // namespace

std::string readWhole(const std::string& name) {
  FileReader reader(name);
  return readAll(reader);
}

std::string readWhole(const std::string& name, Descriptor file) {
  FileReader reader(name, std::move(file));
  return readAll(reader);
}

}  // namespace tessera::files
