#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "hostile/families.hpp"

namespace {

std::string fileNameOf(std::string name) {
  for (char& character : name) {
    if (character == ' ') character = '_';
  }
  return name + ".py";
}

void write(const std::filesystem::path& folder, const hostile::Family& family, std::size_t size) {
  std::ofstream file(folder / fileNameOf(family.name), std::ios::binary);
  file << fl::i18n::ustring_to_utf8(family.make(size));
  if (!file.flush()) throw std::runtime_error("cannot write: " + family.name);
}

}  // namespace

/// write_families FOLDER SIZE [NAME]: writes a text of each family, or of the one named, as UTF-8
/// to a file of the folder.
int main(int count, char** arguments) {
  try {
    if (count < 3) throw std::invalid_argument("use: write_families FOLDER SIZE [NAME]");
    const std::string_view wanted = count > 3 ? arguments[3] : "";
    for (const hostile::Family& family : hostile::families()) {
      if (wanted.empty() || wanted == family.name) {
        write(arguments[1], family, std::stoull(arguments[2]));
      }
    }
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
