#include "tessera/newbundle/writeBundle.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/newbundle/BundleName.hpp"
#include "tessera/newbundle/templateFiles.hpp"

namespace tessera::newbundle {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failAt(const fs::path& path, const std::string& what, const std::string& remedy) {
  throw diagnostics::ProblemError(
      {.file = path.string(), .place = {}, .what = what, .remedy = remedy});
}

[[noreturn]] void failAt(const fs::path& path, const std::string& what) {
  failAt(path, what, "name another directory, one that does not exist");
}

void replaceAll(std::string& text, std::string_view placeholder, std::string_view value) {
  std::size_t at = 0;
  while ((at = text.find(placeholder, at)) != std::string::npos) {
    text.replace(at, placeholder.size(), value);
    at += value.size();
  }
}

/// Returns the part of the version that headers of one API have in common, "0.1" of "0.1.0".
std::string_view apiVersion() {
  constexpr std::string_view kVersion = TESSERA_VERSION;
  return kVersion.substr(0, kVersion.rfind('.'));
}

std::string fillIn(std::string_view pattern, const std::string& name) {
  std::string text(pattern);
  replaceAll(text, "@NAME@", name);
  replaceAll(text, "@CLASS@", classNameOf(name));
  replaceAll(text, "@VERSION@", apiVersion());
  return text;
}

/// Makes the folder unless it is there and empty.
void requireEmptyFolder(const fs::path& folder) {
  std::error_code error;
  if (fs::create_directory(folder, error)) return;
  if (error == std::errc::no_such_file_or_directory) {
    failAt(folder, "cannot be made: " + error.message(), "make the folder above it first");
  }
  if (error) failAt(folder, "cannot be made: " + error.message());
  const fs::directory_iterator first(folder, error);
  if (error) failAt(folder, "cannot be read: " + error.message());
  if (first != fs::directory_iterator()) failAt(folder, "is not empty");
}

void writeNewFile(const fs::path& path, std::string_view text) {
  // O_EXCL: an existing file, or a link to one, is never written to.
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) failAt(path, std::string("cannot be made: ") + std::strerror(errno));
  try {
    files::OutputFile(descriptor, path.string()).writeThrough(text);
  } catch (...) {
    close(descriptor);
    throw;
  }
  close(descriptor);
}

}  // namespace

std::vector<std::string> writeBundle(const std::string& name, const std::string& directory) {
  const fs::path folder(directory);
  requireEmptyFolder(folder);
  std::vector<std::string> written;
  for (const TemplateFile& file : templateFiles()) {
    const fs::path path = folder / fillIn(file.path, name);
    std::error_code error;
    fs::create_directory(path.parent_path(), error);
    if (error) failAt(path.parent_path(), "cannot be made: " + error.message());
    writeNewFile(path, fillIn(file.text, name));
    written.push_back(path.string());
  }
  return written;
}

}  // namespace tessera::newbundle
