#include "apps/tessera/support/TemporaryFolder.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "tessera-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) std::abort();
  folder = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::filesystem::remove_all(folder);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
  return path(name);
}

std::string TemporaryFolder::read(std::string_view name) const {
  std::ifstream file(path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
