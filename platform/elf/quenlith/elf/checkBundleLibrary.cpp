#include "quenlith/elf/checkBundleLibrary.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

#include "quenlith/elf/LibraryName.hpp"
#include "quenlith/elf/loadedLibraries.hpp"
#include "quenlith/elf/readSharedLibrary.hpp"

namespace quenlith::elf {
namespace {

namespace fs = std::filesystem;

std::string nameOf(const std::string& file) {
  return fs::path(file).filename().string();
}

std::string describeFramework(const LibraryName& library) {
  return (library.framework() == Framework::kEmbedded ? "the embedded framework ("
                                                      : "CppMicroServices (") +
         library.name + ")";
}

std::string remedyForFramework(const LibraryName& running) {
  return std::string(
             "build the bundle against the framework of this program, or use a program "
             "that was configured with -DTESSERA_FRAMEWORK=") +
         (running.framework() == Framework::kEmbedded ? "system" : "embedded");
}

std::vector<std::string> foldersOfTheEnvironment() {
  std::vector<std::string> folders;
  const char* paths = std::getenv("LD_LIBRARY_PATH");
  std::string_view rest = paths == nullptr ? "" : paths;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    folders.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return folders;
}

// The folders in which the loader looks for what `library` needs, in its order.
std::vector<std::string> searchedFolders(const SharedLibrary& library) {
  std::vector<std::string> folders = foldersOfTheEnvironment();
  const auto place = library.hasRunPath ? folders.end() : folders.begin();
  folders.insert(place, library.searchPaths.begin(), library.searchPaths.end());
  return folders;
}

// The loader passes over what is missing or for another machine, and looks further.
bool isUsable(const std::string& file) {
  try {
    readSharedLibrary(file);
    return true;
  } catch (const UnusableLibrary&) {
    return false;
  }
}

/// A check of one bundle's library and of the libraries that it brings along.
class Check {
 public:
  explicit Check(const std::string& frameworkFile)
      : running(nameOf(frameworkFile)), frameworkFile(frameworkFile) {
    for (const std::string& file : loadedLibraries()) {
      loaded.emplace_back(nameOf(file));
      loadedFiles.push_back(file);
    }
  }

  std::optional<Fault> run(const std::string& path) {
    pending.push_back(path);
    // Grows while it is read: each library once.
    for (std::size_t i = 0; i < pending.size(); ++i) {
      if (auto fault = checkFile(pending[i], i == 0)) return fault;
    }
    return std::nullopt;
  }

 private:
  std::optional<Fault> checkFile(const std::string& file, bool isBundle) {
    SharedLibrary library;
    try {
      library = readSharedLibrary(file);
    } catch (const UnusableLibrary& error) {
      // A library that is followed was usable just before.
      if (!isBundle) return std::nullopt;
      return error.fault();
    }
    const std::string subject = isBundle ? "it" : "the library " + file + ", which it needs,";
    for (const std::string& text : library.needed) {
      const LibraryName needed(text);
      if (auto fault = checkNeeded(subject, needed)) return fault;
      if (!isLoaded(needed)) follow(needed, library);
    }
    return std::nullopt;
  }

  std::optional<Fault> checkNeeded(const std::string& subject, const LibraryName& needed) const {
    // A framework that is linked into the program itself has no name to compare.
    if (needed.name == running.name || running.framework() == Framework::kNone) return std::nullopt;
    if (needed.stem == running.stem) return otherVersion(subject, needed, running, frameworkFile);
    if (needed.framework() != Framework::kNone && needed.framework() != running.framework()) {
      return Fault{subject + " was built against " + describeFramework(needed) +
                       ", and this process runs " + describeFramework(running) +
                       ": bundles of one cannot run in the other",
                   remedyForFramework(running)};
    }
    return needed.isOurs() ? checkVersion(subject, needed) : std::nullopt;
  }

  // All of this project's libraries have the same version, so that any of them tells it.
  std::optional<Fault> checkVersion(const std::string& subject, const LibraryName& needed) const {
    std::optional<std::size_t> known;
    for (std::size_t i = 0; i < loaded.size(); ++i) {
      if (!loaded[i].isOurs()) continue;
      if (!known || loaded[i].stem == needed.stem) known = i;
    }
    if (!known || loaded[*known].version == needed.version) return std::nullopt;
    return otherVersion(subject, needed, loaded[*known], loadedFiles[*known]);
  }

  static Fault otherVersion(const std::string& subject, const LibraryName& needed,
                            const LibraryName& present, const std::string& presentFile) {
    return {subject + " was built against version " + needed.version + " of " + needed.stem +
                ", and this process has version " + present.version + " (" + presentFile + ")",
            "build the bundle again with the libraries of this program, or use a program with "
            "version " +
                needed.version};
  }

  bool isLoaded(const LibraryName& library) const {
    return std::ranges::find(loaded, library.name, &LibraryName::name) != loaded.end();
  }

  // Adds the file of the library that the loader chooses.
  void follow(const LibraryName& needed, const SharedLibrary& from) {
    for (const std::string& folder : searchedFolders(from)) {
      const std::string file = (fs::path(folder) / needed.name).string();
      if (!isUsable(file)) continue;
      if (std::ranges::find(pending, file) == pending.end()) pending.push_back(file);
      return;
    }
  }

  const LibraryName running;
  const std::string& frameworkFile;
  std::vector<LibraryName> loaded;
  std::vector<std::string> loadedFiles;
  std::vector<std::string> pending;
};

}  // namespace

std::optional<Fault> checkBundleLibrary(const std::string& path, const std::string& frameworkFile) {
  return Check(frameworkFile).run(path);
}

}  // namespace quenlith::elf
