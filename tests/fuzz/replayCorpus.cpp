// Replaces libFuzzer's main: passes each file in the given folders to the fuzz target.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzing library fixes the name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(in), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
}

std::size_t replayFolder(const std::filesystem::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    replay(entry.path());
    ++count;
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) count += replayFolder(argv[i]);
  std::cout << count << " inputs replayed\n";
  return count == 0 ? 1 : 0;
}
