// replayCorpus FOLDER, replayCorpus TARGET FILE...: passes the files of corpora to the fuzz targets
// of this program, without libFuzzer. FOLDER has a folder with the name of each target.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/targets.hpp"

namespace {

namespace fs = std::filesystem;
using quenlith::fuzz::Target;

// What an input that ends the process was is on standard error.
void replay(const Target& target, const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(in), {}};
  if (!in) throw std::runtime_error(file.string() + ": the file cannot be read");
  std::clog << target.name << ' ' << file.filename().string() << '\n';
  target.check(content);
}

// The files in a folder, in the order of their names.
std::vector<fs::path> filesIn(const fs::path& folder) {
  std::vector<fs::path> files(fs::directory_iterator(folder), {});
  std::ranges::sort(files);
  return files;
}

std::size_t replayAll(const fs::path& corpora) {
  std::size_t count = 0;
  for (const Target& target : quenlith::fuzz::targets()) {
    const std::vector<fs::path> files = filesIn(corpora / target.name);
    if (files.empty()) throw std::runtime_error(std::string(target.name) + " has no corpus");
    for (const fs::path& file : files) replay(target, file);
    count += files.size();
  }
  return count;
}

std::size_t replayFiles(const std::string& name, const std::vector<fs::path>& files) {
  const auto targets = quenlith::fuzz::targets();
  const auto target = std::ranges::find(targets, name, &Target::name);
  if (target == targets.end()) throw std::runtime_error(name + ": no such target");
  for (const fs::path& file : files) replay(*target, file);
  return files.size();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::size_t count = argc == 2  ? replayAll(argv[1])
                              : argc > 2 ? replayFiles(argv[1], {argv + 2, argv + argc})
                                         : 0;
    std::cout << count << " inputs replayed\n";
    return count == 0 ? 1 : 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
