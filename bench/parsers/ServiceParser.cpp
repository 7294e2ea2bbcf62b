#include <stdexcept>

#include "parsers/parsers.hpp"
#include "tessera/host/ServiceHost.hpp"

namespace bench::parsers {

namespace {

using document::kdzero::TesseraDocument;
using quenlith::build::markup::Snippet;

/// A host with the parsers' bundle in a running framework.
class ServiceParser : public Subject {
 public:
  ServiceParser(const Corpus& lines, const Contents& wantedContents)
      : corpus(lines), wanted(wantedContents), parser(host.snippetParsers().back().parser) {}

  void build() override {
    document = std::make_shared<TesseraDocument>();
    for (const Snippet& snippet : corpus.snippets()) {
      // The contract: a parser is asked before it parses.
      if (parser->canParse(snippet)) parser->parse(document, snippet);
    }
  }
  void check() const override { expectDocument(*document, wanted); }
  void destroy() override { document.reset(); }

 private:
  const Corpus& corpus;
  Contents wanted;
  tessera::host::ServiceHost host{{}, tessera::host::Pieces::kDropped};
  std::shared_ptr<quenlith::build::markup::SnippetParser> parser;
  std::shared_ptr<TesseraDocument> document;
};

}  // namespace

std::unique_ptr<Subject> makeServiceParser(const Corpus& corpus, const Contents& wanted) {
  return std::make_unique<ServiceParser>(corpus, wanted);
}

}  // namespace bench::parsers
