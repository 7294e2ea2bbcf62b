// parseInMemory FILE: parses the lines of a file, which are in memory, with the default parser.

#include <exception>
#include <iostream>
#include <limits>

#include "harness/Corpus.hpp"
#include "parsers/parsers.hpp"
#include "programs/ownTime.hpp"

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  try {
    const auto corpus = bench::Corpus::read(argv[1], std::numeric_limits<std::size_t>::max());
    const auto parser =
        bench::parsers::makeServiceParser(corpus, bench::parsers::contentsOf(corpus));
    bench::programs::printOwnTime([&] { parser->build(); });
    parser->check();
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
