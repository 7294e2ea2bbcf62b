// Stands in for the services while there is no framework to run: makes the parsers itself.
#include "quenlith/build/markup/code/CodeSnippetParserImpl.hpp"
#include "quenlith/build/markup/code/PlainTextNodeParserImpl.hpp"
#include "quenlith/build/markup/code/TaskSnippetParserImpl.hpp"
#include "tessera/Problem.hpp"
#include "tessera/services/ServiceHost.hpp"

namespace tessera::services {
namespace {

using namespace quenlith::build::markup;

class PlainProvider final : public quenlith::build::markup::services::ParserServicesProvider {
 public:
  std::vector<std::shared_ptr<contributordata::LineContributorDataParser>>
  getLineContributorDataParsers() override {
    return {};
  }
  std::vector<std::shared_ptr<code::CodeElementParser>> getCodeElementParsers() override {
    return {plain};
  }

 private:
  std::shared_ptr<code::CodeElementParser> plain =
      std::make_shared<code::PlainTextNodeParserImpl>();
};

}  // namespace

struct ServiceHost::Running {
  std::shared_ptr<appendix::FileAppendix> appendix = std::make_shared<appendix::FileAppendix>();
  std::shared_ptr<PlainProvider> provider = std::make_shared<PlainProvider>();
};

ServiceHost::ServiceHost(const std::vector<std::string>& extensionBundles)
    : running(std::make_unique<Running>()) {
  if (extensionBundles.empty()) return;
  throw ProblemError({.file = extensionBundles.front(),
                      .place = {},
                      .what = "the bundle cannot be started: this build has no framework",
                      .remedy = "leave --bundle out"});
}

ServiceHost::~ServiceHost() = default;

appendix::FileAppendix& ServiceHost::appendix() noexcept {
  return *running->appendix;
}

std::vector<session::NamedParser> ServiceHost::snippetParsers() const {
  return {
      {"TaskSnippetParserImpl",
       std::make_shared<code::TaskSnippetParserImpl>(running->appendix, running->provider)},
      {"CodeSnippetParserImpl", std::make_shared<code::CodeSnippetParserImpl>(running->provider)}};
}

}  // namespace tessera::services
