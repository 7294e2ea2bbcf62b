#include <cstddef>
#include <cstring>

/// Copies `size` bytes of `text` to `output` by way of a large buffer.
int copyText(const char* text, char* output, std::size_t size) {
  char buffer[20000];
  std::memcpy(buffer, text, size);
  std::memcpy(output, buffer, size);
  return buffer[size / 2];
}
