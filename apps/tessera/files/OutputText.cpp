#include "tessera/files/OutputText.hpp"

namespace tessera::files {

void OutputText::flush() {
  if (buffered.empty()) return;
  try {
    write(buffered);
  } catch (...) {
    buffered.clear();
    throw;
  }
  buffered.clear();
}

}  // namespace tessera::files
