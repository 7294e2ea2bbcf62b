#include "tessera/host/ServiceHost.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <iterator>
#include <optional>
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
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/elf/checkBundleLibrary.hpp"
#include "quenlith/elf/loadedLibraries.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/host/findBundles.hpp"
#include "tessera/host/reportEvent.hpp"

namespace tessera::host {
namespace {

using cppmicroservices::FrameworkEvent;
using cppmicroservices::ServiceReference;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::SnippetParser;
using quenlith::build::markup::code::CodeElementParser;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;

using ParserReference = ServiceReference<SnippetParser>;

constexpr const char* kDefaultFilter = "(priority=default)";
constexpr const char* kOtherFilter = "(!(priority=default))";

// The snippet parsers of the parsers' bundle and the parser of the bundle for pieces, by their
// test_id. Without one of them the program would write wrong documents.
constexpr std::string_view kRequiredParsers[] = {"CodeSnippetParserImpl", "TaskSnippetParserImpl"};
constexpr std::string_view kPieceParser = "PieceParser";

// A runtime may register the services of a bundle on its own threads, after the bundle has started.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kPause{1};

std::string testIdOf(const ParserReference& reference) {
  const cppmicroservices::Any property = reference.GetProperty("test_id");
  const auto* text = cppmicroservices::any_cast<std::string>(&property);
  return text == nullptr ? std::string() : *text;
}

template <class Service>
bool isRegistered(cppmicroservices::BundleContext context, std::string_view testId) {
  const std::string filter = "(test_id=" + std::string(testId) + ")";
  return !context.GetServiceReferences<Service>(filter).empty();
}

/// A parser that the program needs and the file of its bundle.
struct RequiredParser {
  std::string_view name;
  const std::string& bundleFile;
};

[[noreturn]] void throwUnusable(const RequiredParser& parser, const char* what) {
  throw diagnostics::ProblemError({.file = parser.bundleFile,
                                   .place = {},
                                   .what = "the parser " + std::string(parser.name) + " " + what,
                                   .remedy = "install the program again"});
}

}  // namespace

struct ServiceHost::Running {
  Running(Pieces pieces, StartEvents startEvents)
      : pieces(pieces),
        isSilent(std::make_shared<std::atomic<bool>>(startEvents == StartEvents::kDropped)) {}
  ~Running() { stop(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  void start(const std::vector<std::string>& extensionBundles);
  void listen();
  void startBundle(const std::string& file);
  std::optional<RequiredParser> findMissingParser() const;
  void awaitParsers() const;
  void stop() noexcept;

  const Pieces pieces;
  std::shared_ptr<cppmicroservices::Framework> framework =
      std::make_shared<cppmicroservices::Framework>(
          cppmicroservices::FrameworkFactory().NewFramework());
  std::shared_ptr<MarkerAppendix> appendix = std::make_shared<MarkerAppendix>();
  cppmicroservices::ServiceRegistration<AppendixBuilder> registration;
  std::vector<cppmicroservices::Bundle> bundles;
  const BundleFiles files = findBundles();
  // Whether events are not reported to the user.
  std::shared_ptr<std::atomic<bool>> isSilent;
  // Whether the framework has reported an error of one of the program's bundles.
  std::shared_ptr<std::atomic<bool>> hasFailed = std::make_shared<std::atomic<bool>>(false);
};

ServiceHost::ServiceHost(const std::vector<std::string>& extensionBundles, Pieces pieces,
                         StartEvents startEvents)
    : running(std::make_unique<Running>(pieces, startEvents)) {
  running->start(extensionBundles);
  *running->isSilent = false;
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
  if (pieces == Pieces::kKept) startBundle(files.pieces);
  for (const std::string& file : extensionBundles) startBundle(file);
  awaitParsers();
}

void ServiceHost::Running::listen() {
  // Shared, because the framework may outlive this object.
  const auto listener = [silent = isSilent, failed = hasFailed,
                         own = files](const FrameworkEvent& event) {
    if (!*silent) reportEvent(event);
    if (event.GetType() != FrameworkEvent::FRAMEWORK_ERROR || !event.GetBundle()) return;
    const std::string location = event.GetBundle().GetLocation();
    if (location == own.parsers || location == own.pieces) *failed = true;
  };
  framework->GetBundleContext().AddFrameworkListener(listener);
}

void ServiceHost::Running::startBundle(const std::string& file) {
  const auto framework = quenlith::elf::loadedFramework();
  if (const auto fault = quenlith::elf::checkBundleLibrary(file, framework.value_or(""))) {
    throw diagnostics::ProblemError(
        {.file = file, .place = {}, .what = fault->what, .remedy = fault->remedy});
  }
  try {
    for (cppmicroservices::Bundle& bundle : this->framework->GetBundleContext().InstallBundles(file)) {
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

/// Returns the first required parser that is not registered, if there is one.
std::optional<RequiredParser> ServiceHost::Running::findMissingParser() const {
  const auto context = framework->GetBundleContext();
  for (const std::string_view name : kRequiredParsers) {
    if (!isRegistered<SnippetParser>(context, name)) return RequiredParser{name, files.parsers};
  }
  if (pieces == Pieces::kKept && !isRegistered<CodeElementParser>(context, kPieceParser)) {
    return RequiredParser{kPieceParser, files.pieces};
  }
  return std::nullopt;
}

void ServiceHost::Running::awaitParsers() const {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (true) {
    const auto missing = findMissingParser();
    if (!missing) return;
    if (*hasFailed) throwUnusable(*missing, "cannot be started");
    if (std::chrono::steady_clock::now() > deadline) {
      throwUnusable(*missing, "is not registered, a service it needs is missing");
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
        parsers.push_back({name, std::move(parser), reference.GetBundle().GetSymbolicName()});
      } else if (std::ranges::find(kRequiredParsers, name) != std::end(kRequiredParsers)) {
        throwUnusable({name, running->files.parsers}, "cannot be created");
      }
      // The runtime has reported the others; they are left out.
    }
  }
  return parsers;
}

std::vector<std::shared_ptr<CodeElementParser>> ServiceHost::codeElementParsers() const {
  auto context = running->framework->GetBundleContext();
  std::vector<std::shared_ptr<CodeElementParser>> parsers;
  for (const auto& reference : context.GetServiceReferences<CodeElementParser>(kOtherFilter)) {
    if (auto parser = context.GetService(reference)) parsers.push_back(std::move(parser));
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
