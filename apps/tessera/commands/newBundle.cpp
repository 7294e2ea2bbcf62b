#include "tessera/commands/newBundle.hpp"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "tessera/commands/status.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/diagnostics/terminalText.hpp"
#include "tessera/files/OutputFile.hpp"
#include "tessera/newbundle/BundleName.hpp"
#include "tessera/newbundle/writeBundle.hpp"

namespace tessera::commands {
namespace {

namespace fs = std::filesystem;

/// Returns `text` as one word of a shell.
std::string shellWord(std::string_view text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./=+,";
  if (!text.empty() && text.find_first_not_of(kPlain) == text.npos) return std::string(text);
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

/// Returns where the program is installed; empty if it runs from a build folder.
std::string installPrefix() {
  const fs::path prefix = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
  const fs::path libraries = (prefix / "bin" / TESSERA_LIBRARY_FOLDER).lexically_normal();
  return fs::exists(libraries / "cmake" / "Quenlith" / "QuenlithConfig.cmake") ? prefix.string()
                                                                               : std::string();
}

std::string nextSteps(const std::string& directory) {
  const std::string source = shellWord(directory);
  const std::string build = shellWord((fs::path(directory) / "build").string());
  const std::string prefix = installPrefix();
  std::string steps = "\nBuild and test it";
  if (prefix.empty()) steps += ", with PREFIX where Quenlith is installed (cmake --install)";
  return steps + ":\n  cmake -S " + source + " -B " + build +
         " -DCMAKE_PREFIX_PATH=" + (prefix.empty() ? "PREFIX" : shellWord(prefix)) +
         "\n  cmake --build " + build + "\n  ctest --test-dir " + build + "\n";
}

}  // namespace

int newBundle(const NewBundleOptions& options) {
  if (const std::string fault = newbundle::faultOf(options.name); !fault.empty()) {
    throw diagnostics::ProblemError({.file = "tessera",
                                     .place = {},
                                     .what = "\"" + options.name + "\" " + fault,
                                     .remedy = ""});
  }
  files::OutputFile output(STDOUT_FILENO, "standard output");
  for (const std::string& path : newbundle::writeBundle(options.name, options.directory)) {
    output.text().append(diagnostics::terminalText(path)).append("\n");
  }
  output.text() += nextSteps(diagnostics::terminalText(options.directory));
  output.flush();
  return kFine;
}

}  // namespace tessera::commands
