#include "quenlith/shared/logging/trace.hpp"

#include "parsers/parsers.hpp"

namespace bench::parsers {

namespace {

/// One progress record per line, with logging off.
class Trace : public Subject {
 public:
  explicit Trace(const Corpus& lines) : corpus(lines) {}

  void build() override {
    calls = 0;
    for (std::size_t line = 0; line < corpus.lineCount(); ++line) {
      quenlith::shared::logging::trace("In LineNodeParserService");
      ++calls;
    }
  }
  void check() const override { expectCount("trace, calls", calls, corpus.lineCount()); }

 private:
  const Corpus& corpus;
  std::size_t calls = 0;
};

}  // namespace

std::unique_ptr<Subject> makeTrace(const Corpus& corpus) {
  return std::make_unique<Trace>(corpus);
}

}  // namespace bench::parsers
