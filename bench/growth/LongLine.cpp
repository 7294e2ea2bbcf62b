#include <functional>
#include <string>
#include <utility>

#include "growth/subjects.hpp"
#include "harness/MarkedCorpus.hpp"
#include "parsers/parsers.hpp"

namespace bench::growth {

namespace {

using parsers::Contents;

/// Parses lines that it owns, one by one.
class OwnLines : public Subject {
 public:
  OwnLines(Corpus ownLines, const Contents& wanted)
      : lines(std::move(ownLines)), parser(parsers::makeLineParser(lines, wanted)) {}

  void build() override { parser->build(); }
  void check() const override { parser->check(); }
  void destroy() override { parser->destroy(); }

 private:
  Corpus lines;
  std::unique_ptr<Subject> parser;
};

std::unique_ptr<Subject> parseOf(std::string line, const Contents& wanted) {
  return std::make_unique<OwnLines>(Corpus({std::move(line)}), wanted);
}

std::string outputMarker(std::size_t number, std::size_t begin, std::size_t end) {
  return " # <@output#o" + std::to_string(number) + " [" + std::to_string(begin) + ',' +
         std::to_string(end) + "]>";
}

}  // namespace

std::unique_ptr<Subject> makeLines(const Corpus& lines, std::size_t count) {
  constexpr std::size_t kRepeated = 1000;
  std::vector<std::string> repeated;
  for (std::size_t line = 0; line < count; ++line) {
    repeated.push_back(lines.utf8Lines()[line % kRepeated % lines.lineCount()]);
  }
  Corpus corpus(std::move(repeated));
  const Contents wanted = parsers::contentsOf(corpus);
  return std::make_unique<OwnLines>(std::move(corpus), wanted);
}

std::unique_ptr<Subject> makeMarkers(const Corpus& /*lines*/, std::size_t count) {
  MarkedCorpus marked = MarkedCorpus::make(Corpus({"x = 1"}), 1, 1, count);
  const Contents wanted = parsers::contentsOf(marked);
  return std::make_unique<OwnLines>(std::move(marked.corpus), wanted);
}

std::unique_ptr<Subject> makeRanges(const Corpus& /*lines*/, std::size_t count) {
  std::string line(2 * count, 'x');
  for (std::size_t number = 0; number < count; ++number) {
    line += outputMarker(number, number, 2 * count - number);
  }
  // All of the leading text is owned; only the space before each marker remains.
  return parseOf(std::move(line), {1, count, 0, 0});
}

std::unique_ptr<Subject> makeFailures(const Corpus& /*lines*/, std::size_t count) {
  std::string line = "x = 1";
  const std::size_t units = line.size() + count;
  for (std::size_t number = 0; number < count; ++number) line += outputMarker(number, 1, 0);
  return parseOf(std::move(line), {1, units, 0, count});
}

}  // namespace bench::growth
