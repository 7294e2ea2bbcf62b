#include <stdexcept>

#include "parsers/CachedLists.hpp"
#include "parsers/parsers.hpp"
#include "quenlith/build/markup/code/LineNodeParserService.hpp"

namespace bench::parsers {

namespace {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::ParseResult;
using quenlith::build::markup::Snippet;
using quenlith::build::markup::code::LineNodeParserService;

class LineParser : public Subject {
 public:
  LineParser(const Corpus& lines, const Contents& wantedContents)
      : corpus(lines), wanted(wantedContents) {}

  void build() override {
    document = std::make_shared<TesseraDocument>();
    for (const Snippet& snippet : corpus.snippets()) {
      service.parseLine(document, snippet, ParseResult());
    }
  }
  void check() const override { expectDocument(*document, wanted); }
  void destroy() override { document.reset(); }

 private:
  const Corpus& corpus;
  Contents wanted;
  LineNodeParserService service{std::make_shared<CachedLists>()};
  std::shared_ptr<TesseraDocument> document;
};

class ProviderLists : public Subject {
 public:
  explicit ProviderLists(const Corpus& lines) : corpus(lines) {}

  void build() override {
    entries = 0;
    for (std::size_t line = 0; line < corpus.lineCount(); ++line) {
      entries += provider->getLineContributorDataParsers().size();
      entries += provider->getCodeElementParsers().size();
    }
  }
  void check() const override { expectCount("lists, entries", entries, corpus.lineCount()); }

 private:
  const Corpus& corpus;
  // Called like a service: through its interface, so that the calls are virtual.
  std::shared_ptr<quenlith::build::markup::services::ParserServicesProvider> provider =
      std::make_shared<CachedLists>();
  std::size_t entries = 0;
};

}  // namespace

Contents contentsOf(const Corpus& plainLines) {
  return {plainLines.lineCount(), plainLines.unitCount(), 0, 0};
}

Contents contentsOf(const MarkedCorpus& markedLines) {
  return {markedLines.corpus.lineCount(), markedLines.textUnits, markedLines.anchors, 0};
}

std::unique_ptr<Subject> makeLineParser(const Corpus& corpus, const Contents& wanted) {
  return std::make_unique<LineParser>(corpus, wanted);
}

std::unique_ptr<Subject> makeProviderLists(const Corpus& corpus) {
  return std::make_unique<ProviderLists>(corpus);
}

}  // namespace bench::parsers
