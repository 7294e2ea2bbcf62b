// Compares the program tessera with lower bounds for its work, and prints tables in Markdown.

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <iostream>

#include "programs/ProgramContest.hpp"

int main(int argc, char** argv) {
  CLI::App app{"Measures the program tessera against what its work costs at least."};
  std::string source;
  int rounds = 5;
  app.add_option("source", source, "File of lines, made by scripts/bench")->required();
  app.add_option("--rounds", rounds, "Rounds of which the best counts");
  CLI11_PARSE(app, argc, argv);

  try {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    bench::programs::ProgramContest contest(folder.string(), source);
    contest.run(rounds);
    contest.write(std::cout);
  } catch (const std::exception& error) {
    std::cerr << "bench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
