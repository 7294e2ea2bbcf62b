#include "tessera/host/ServiceHost.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <iterator>
#include <string_view>
#include <thread>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/host/findBundles.hpp"
#include "tessera/host/reportEvent.hpp"

namespace tessera::host {
namespace {

using cppmicroservices::FrameworkEvent;
using cppmicroservices::ServiceReference;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::SnippetParser;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;

using ParserReference = ServiceReference<SnippetParser>;

constexpr const char* kDefaultFilter = "(priority=default)";
constexpr const char* kOtherFilter = "(!(priority=default))";

// The snippet parsers of the parsers' bundle, by their test_id. Without one of them the program
// would write wrong documents.
constexpr std::string_view kRequiredParsers[] = {"CodeSnippetParserImpl", "TaskSnippetParserImpl"};

// A runtime may register the services of a bundle on its own threads, after the bundle has started.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kPause{1};

std::string testIdOf(const ParserReference& reference) {
  const cppmicroservices::Any property = reference.GetProperty("test_id");
  const auto* text = cppmicroservices::any_cast<std::string>(&property);
  return text == nullptr ? std::string() : *text;
}

/// Returns the name of the first required parser that is not registered; empty when all are.
std::string findMissingParser(cppmicroservices::BundleContext context) {
  for (const std::string_view name : kRequiredParsers) {
    const std::string filter = "(test_id=" + std::string(name) + ")";
    if (context.GetServiceReferences<SnippetParser>(filter).empty()) return std::string(name);
  }
  return {};
}

[[noreturn]] void throwUnusableParser(const std::string& name, const std::string& bundleFile,
                                      const char* what) {
  throw diagnostics::ProblemError({.file = bundleFile,
                                   .place = {},
                                   .what = "the snippet parser " + name + " " + what,
                                   .remedy = "install the program again"});
}

}  // namespace

struct ServiceHost::Running {
  Running() = default;
  ~Running() { stop(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  void start(const std::vector<std::string>& extensionBundles);
  void listen();
  void startBundle(const std::string& file);
  void awaitParsers() const;
  void stop() noexcept;

  std::shared_ptr<cppmicroservices::Framework> framework =
      std::make_shared<cppmicroservices::Framework>(
          cppmicroservices::FrameworkFactory().NewFramework());
  std::shared_ptr<MarkerAppendix> appendix = std::make_shared<MarkerAppendix>();
  cppmicroservices::ServiceRegistration<AppendixBuilder> registration;
  std::vector<cppmicroservices::Bundle> bundles;
  const BundleFiles files = findBundles();
  // Whether the framework has reported an error of the parsers' bundle.
  std::shared_ptr<std::atomic<bool>> hasFailed = std::make_shared<std::atomic<bool>>(false);
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
  listen();
  startBundle(files.declarativeServices);
  registration = framework->GetBundleContext().RegisterService<AppendixBuilder>(
      std::shared_ptr<AppendixBuilder>(appendix));
  startBundle(files.parsers);
  for (const std::string& file : extensionBundles) startBundle(file);
  awaitParsers();
}

void ServiceHost::Running::listen() {
  // Shared, because the framework may outlive this object.
  const auto listener = [failed = hasFailed, parsers = files.parsers](const FrameworkEvent& event) {
    reportEvent(event);
    const bool isError = event.GetType() == FrameworkEvent::FRAMEWORK_ERROR;
    if (isError && event.GetBundle() && event.GetBundle().GetLocation() == parsers) *failed = true;
  };
  framework->GetBundleContext().AddFrameworkListener(listener);
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
  while (true) {
    const std::string missing = findMissingParser(context);
    if (missing.empty()) return;
    if (*hasFailed) throwUnusableParser(missing, files.parsers, "cannot be started");
    if (std::chrono::steady_clock::now() > deadline) {
      throwUnusableParser(missing, files.parsers,
                          "is not registered, a service it needs is missing");
    }
    std::this_thread::sleep_for(kPause);
  }
}

std::vector<session::NamedParser> ServiceHost::snippetParsers() const {
  auto context = running->framework->GetBundleContext();
  std::vector<session::NamedParser> parsers;
  for (const char* filter : {kOtherFilter, kDefaultFilter}) {
    for (const ParserReference& reference : context.GetServiceReferences<SnippetParser>(filter)) {
      const std::string name = testIdOf(reference);
      if (auto parser = context.GetService(reference)) {
        parsers.push_back({name, std::move(parser)});
      } else if (std::ranges::find(kRequiredParsers, name) != std::end(kRequiredParsers)) {
        throwUnusableParser(name, running->files.parsers, "cannot be created");
      }
      // The runtime has reported the others; they are left out.
    }
  }
  return parsers;
}

void ServiceHost::Running::stop() noexcept {
  setFramework(nullptr);
  try {
    for (auto bundle = bundles.rbegin(); bundle != bundles.rend(); ++bundle) {
      // The runtime stops after the appendix is unregistered: it makes the parsers release it.
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
