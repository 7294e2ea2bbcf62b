#include "hostile/Host.hpp"

#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "tessera/pieces/PieceParser.hpp"

namespace hostile {
namespace {

using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::contributordata::LineContributorDataParser;
using quenlith::shared::appendix::MarkerAppendix;

class Provider final : public quenlith::build::markup::services::ParserServicesProvider {
 public:
  std::vector<std::shared_ptr<LineContributorDataParser>> getLineContributorDataParsers() override {
    return {};
  }
  std::vector<std::shared_ptr<CodeElementParser>> getCodeElementParsers() override {
    return parsers;
  }

 private:
  std::vector<std::shared_ptr<CodeElementParser>> parsers{
      std::make_shared<tessera::pieces::PieceParser>(),
      std::make_shared<quenlith::build::markup::code::PlainTextNodeParserImpl>()};
};

}  // namespace

Host::Host()
    : entries(std::make_shared<MarkerAppendix>()), provider(std::make_shared<Provider>()) {}

tessera::session::SnippetSession Host::makeSession(tessera::session::Recording* recording) const {
  return {makeParsers(), nullptr, recording};
}

std::vector<tessera::session::NamedParser> Host::makeParsers() const {
  using quenlith::build::markup::code::CodeSnippetParserImpl;
  using quenlith::build::markup::code::TaskSnippetParserImpl;
  return {{"TaskSnippetParserImpl", std::make_shared<TaskSnippetParserImpl>(entries, provider)},
          {"CodeSnippetParserImpl", std::make_shared<CodeSnippetParserImpl>(provider)}};
}

}  // namespace hostile
