#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/commandline/generate/texts.hpp"
#include "tessera/commandline/program.hpp"

namespace {

using namespace tessera::commandline;

std::vector<Choice> listDiagnostics() {
  std::vector<Choice> diagnostics;
  for (const auto& entry : tessera::check::catalogue::catalogue()) {
    diagnostics.push_back({.name = entry.id, .help = entry.title});
  }
  return diagnostics;
}

std::string generateText(std::string_view kind) {
  if (kind == "man") return generate::manualPage(program(), TESSERA_VERSION);
  if (kind == "markdown") return generate::optionsPage(program());
  if (kind == "bash") return generate::bashCompletion(program(), listDiagnostics());
  if (kind == "zsh") return generate::zshCompletion(program(), listDiagnostics());
  if (kind == "fish") return generate::fishCompletion(program(), listDiagnostics());
  return {};
}

}  // namespace

/// Writes the text KIND about the command line, man, markdown, bash, zsh or fish, to FILE.
int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fputs("usage: tessera_generator KIND FILE\n", stderr);
    return 2;
  }
  const std::string text = generateText(arguments[1]);
  std::FILE* const file = std::fopen(arguments[2], "wb");
  if (text.empty() || file == nullptr) return 2;
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && isWritten ? 0 : 2;
}
