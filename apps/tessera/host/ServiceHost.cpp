#include "tessera/host/ServiceHost.hpp"

#include <chrono>
#include <exception>
#include <string_view>
#include <thread>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/host/findBundles.hpp"
#include "tessera/host/reportEvent.hpp"

namespace tessera::host {
namespace {

using cppmicroservices::ServiceReference;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::SnippetParser;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;

using ParserReference = ServiceReference<SnippetParser>;

constexpr const char* kDefaultFilter = "(priority=default)";
constexpr const char* kOtherFilter = "(!(priority=default))";
constexpr const char* kTaskFilter = "(test_id=TaskSnippetParserImpl)";

// A runtime may make its components on threads of its own. One that takes longer does not work.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kPause{1};

std::string testIdOf(const ParserReference& reference) {
  const cppmicroservices::Any property = reference.GetProperty("test_id");
  const auto* text = cppmicroservices::any_cast<std::string>(&property);
  return text == nullptr ? std::string() : *text;
}

bool hasParser(cppmicroservices::BundleContext context, const char* filter) {
  return !context.GetServiceReferences<SnippetParser>(filter).empty();
}

}  // namespace

struct ServiceHost::Running {
  Running() = default;
  ~Running() { stop(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  void start(const std::vector<std::string>& extensionBundles);
  void startBundle(const std::string& file);
  void awaitParsers() const;
  void stop() noexcept;

  std::shared_ptr<cppmicroservices::Framework> framework =
      std::make_shared<cppmicroservices::Framework>(
          cppmicroservices::FrameworkFactory().NewFramework());
  std::shared_ptr<MarkerAppendix> appendix = std::make_shared<MarkerAppendix>();
  cppmicroservices::ServiceRegistration<AppendixBuilder> registration;
  std::vector<cppmicroservices::Bundle> bundles;
};

ServiceHost::ServiceHost(const std::vector<std::string>& extensionBundles)
    : running(std::make_unique<Running>()) {
  running->start(extensionBundles);
}

ServiceHost::~ServiceHost() = default;

MarkerAppendix& ServiceHost::appendix() noexcept {
  return *running->appendix;
}

void ServiceHost::Running::start(const std::vector<std::string>& extensionBundles) {
  framework->Start();
  setFramework(framework);
  framework->GetBundleContext().AddFrameworkListener(reportEvent);
  const BundleFiles files = findBundles();
  startBundle(files.declarativeServices);
  registration = framework->GetBundleContext().RegisterService<AppendixBuilder>(
      std::shared_ptr<AppendixBuilder>(appendix));
  startBundle(files.parsers);
  for (const std::string& file : extensionBundles) startBundle(file);
  awaitParsers();
}

void ServiceHost::Running::startBundle(const std::string& file) {
  try {
    for (cppmicroservices::Bundle& bundle : framework->GetBundleContext().InstallBundles(file)) {
      bundles.push_back(bundle);
      bundle.Start();
    }
  } catch (const std::exception& error) {
    throw diagnostics::ProblemError(
        {.file = file,
         .place = {},
         .what = std::string("the bundle cannot be started: ") + error.what(),
         .remedy = "name another bundle, or leave it out"});
  }
}

void ServiceHost::Running::awaitParsers() const {
  const auto context = framework->GetBundleContext();
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!hasParser(context, kDefaultFilter) || !hasParser(context, kTaskFilter)) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw diagnostics::ProblemError({.file = "tessera",
                                       .place = {},
                                       .what = "the snippet parsers do not appear as services",
                                       .remedy = "install the program again"});
    }
    std::this_thread::sleep_for(kPause);
  }
}

std::vector<session::NamedParser> ServiceHost::snippetParsers() const {
  auto context = running->framework->GetBundleContext();
  std::vector<session::NamedParser> parsers;
  for (const char* filter : {kOtherFilter, kDefaultFilter}) {
    for (const ParserReference& reference : context.GetServiceReferences<SnippetParser>(filter)) {
      // A service that cannot be made is told by the runtime; the others are used.
      if (auto parser = context.GetService(reference)) {
        parsers.push_back({testIdOf(reference), std::move(parser)});
      }
    }
  }
  return parsers;
}

void ServiceHost::Running::stop() noexcept {
  setFramework(nullptr);
  try {
    for (auto bundle = bundles.rbegin(); bundle != bundles.rend(); ++bundle) {
      // The runtime stays until the appendix is gone: it lets go of it in the parsers.
      if (bundle + 1 == bundles.rend() && registration) registration.Unregister();
      bundle->Stop();
    }
    framework->Stop();
    framework->WaitForStop(std::chrono::milliseconds::zero());
  } catch (const std::exception&) {
    // The process is about to end, or another error is on its way to the user.
  }
}

}  // namespace tessera::host
