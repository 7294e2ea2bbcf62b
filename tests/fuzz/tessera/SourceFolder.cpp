#include "fuzz/tessera/SourceFolder.hpp"

#include <cstdlib>
#include <fstream>
#include <system_error>

#include "fuzz/require.hpp"

namespace quenlith::fuzz {

namespace fs = std::filesystem;

SourceFolder::SourceFolder() : folder((fs::temp_directory_path() / "fuzz-XXXXXX").string()) {
  require(::mkdtemp(folder.data()) != nullptr, "a temporary folder is made");
  folder = fs::canonical(folder).string();
  fs::create_directory(folder + "/.git");
  fs::create_directory(folder + "/empty");
  std::vector<std::string> all = files();
  all.insert(all.end(), {".hidden.py", "d/.hidden/e.py"});
  for (const std::string& file : all) {
    fs::create_directories(fs::path(folder + '/' + file).parent_path());
    std::ofstream(folder + '/' + file) << "x = 1\n";
  }
}

SourceFolder::~SourceFolder() {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

const std::vector<std::string>& SourceFolder::files() {
  // "d.py" is before "d/", because "." is before "/".
  static const std::vector<std::string> kFiles = {
      "a b.py", "a.py", "b.txt", "d.py", "d/a.py", "d/f/a.py", "d/f/b.txt", "d/f/g/h.py", "e"};
  return kFiles;
}

void SourceFolder::ignore(const std::string& directory, std::string_view rules) const {
  std::ofstream(folder + '/' + directory + ".gitignore", std::ios::binary) << rules;
}

}  // namespace quenlith::fuzz
