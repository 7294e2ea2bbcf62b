#include "tessera/host/ServiceHost.hpp"

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/ServiceReference.h"
#include "quenlith/build/markup/services/ParserServicesProvider.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/host/findBundles.hpp"

namespace tessera::host {
namespace {

using cppmicroservices::ServiceReference;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::build::markup::services::ParserServicesProvider;
using quenlith::shared::appendix::MarkerAppendix;

using ParserReference = ServiceReference<SnippetParser>;

constexpr const char* kDefaultFilter = "(priority=default)";
constexpr const char* kOtherFilter = "(!(priority=default))";

// The snippet parsers of the parsers' bundle, by their test_id. Without one of them the program
// would write wrong documents.
constexpr std::string_view kRequiredParsers[] = {"CodeSnippetParserImpl", "TaskSnippetParserImpl"};

std::string testIdOf(const ParserReference& reference) {
  const cppmicroservices::Any property = reference.GetProperty("test_id");
  const auto* text = cppmicroservices::any_cast<std::string>(&property);
  return text == nullptr ? std::string() : *text;
}

[[noreturn]] void throwUnusable(std::string_view parser, const char* what) {
  throw diagnostics::ProblemError({.file = findBundles().parsers,
                                   .place = {},
                                   .what = "the parser " + std::string(parser) + " " + what,
                                   .remedy = "install the program again"});
}

}  // namespace

ServiceHost::ServiceHost(const std::vector<std::string>& extensionBundles, Pieces pieces)
    : parserAppendix(std::make_shared<MarkerAppendix>()),
      running(std::make_unique<RunningBundles>(OnProblem::kThrow)) {
  startBundles(*running, parserAppendix, pieces, extensionBundles);
  // Whatever was wrong at the start has been thrown.
  running->reportEvents();
}

ServiceHost::~ServiceHost() = default;

MarkerAppendix& ServiceHost::appendix() noexcept {
  return *parserAppendix;
}

std::vector<session::NamedParser> ServiceHost::snippetParsers() const {
  auto context = running->context();
  std::vector<session::NamedParser> parsers;
  for (const char* filter : {kOtherFilter, kDefaultFilter}) {
    for (const ParserReference& reference : context.GetServiceReferences<SnippetParser>(filter)) {
      const std::string name = testIdOf(reference);
      if (auto parser = context.GetService(reference)) {
        parsers.push_back({name, std::move(parser), reference.GetBundle().GetSymbolicName()});
      } else {
        throwUnusable(name, "cannot be created");
      }
    }
  }
  for (const std::string_view name : kRequiredParsers) {
    if (std::ranges::find(parsers, name, &session::NamedParser::name) == parsers.end()) {
      throwUnusable(name, "is missing");
    }
  }
  return parsers;
}

void ServiceHost::findLineParsers() const {
  auto context = running->context();
  const auto reference = context.GetServiceReference<ParserServicesProvider>();
  const auto provider = reference ? context.GetService(reference) : nullptr;
  if (provider == nullptr) return;
  try {
    provider->getCodeElementParsers();
  } catch (const std::exception&) {
    // The first line repeats it, and is named in the message.
  }
}

std::vector<std::shared_ptr<CodeElementParser>> ServiceHost::codeElementParsers() const {
  auto context = running->context();
  std::vector<std::shared_ptr<CodeElementParser>> parsers;
  for (const auto& reference : context.GetServiceReferences<CodeElementParser>(kOtherFilter)) {
    if (auto parser = context.GetService(reference)) parsers.push_back(std::move(parser));
  }
  return parsers;
}

}  // namespace tessera::host
