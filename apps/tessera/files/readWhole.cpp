#include "tessera/files/readWhole.hpp"

#include <cstddef>
#include <vector>

#include "tessera/files/FileReader.hpp"

namespace tessera::files {

std::string readWhole(const std::string& name) {
  FileReader reader(name);
  std::string bytes;
  // Not on the stack, which may be small.
  std::vector<char> piece(64 * 1024);
  while (const std::size_t count = reader.read(piece.data(), piece.size())) {
    bytes.append(piece.data(), count);
  }
  return bytes;
}

}  // namespace tessera::files
