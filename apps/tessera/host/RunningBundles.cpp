#include "tessera/host/RunningBundles.hpp"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceReference.h"
#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/SnippetParser.hpp"
#include "quenlith/build/markup/code/CodeElementParser.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"
#include "quenlith/elf/checkBundleLibrary.hpp"
#include "quenlith/elf/loadedLibraries.hpp"
#include "quenlith/elf/readSharedLibrary.hpp"
#include "tessera/host/describeFault.hpp"
#include "tessera/host/findMissingServices.hpp"
#include "tessera/host/reportEvent.hpp"

namespace tessera::host {
namespace {

using cppmicroservices::Bundle;
using cppmicroservices::FrameworkEvent;
using diagnostics::Problem;
using foundation::cppmicroservices::setFramework;
using quenlith::shared::appendix::AppendixBuilder;
using quenlith::shared::appendix::MarkerAppendix;

// A runtime may register the services of a bundle on its own threads, after the bundle has started.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kPause{1};

std::string propertyOf(const cppmicroservices::ServiceReferenceU& service, const std::string& key) {
  const cppmicroservices::Any value = service.GetProperty(key);
  const auto* text = cppmicroservices::any_cast<std::string>(&value);
  return text == nullptr ? "" : *text;
}

std::string absolute(const std::string& file) {
  return std::filesystem::absolute(file).string();
}

/// Returns the one name that all spellings of the path `file` have in common.
std::string canonical(const std::string& file) {
  std::error_code error;
  std::filesystem::path path = std::filesystem::weakly_canonical(file, error);
  return error ? absolute(file) : path.string();
}

/// Returns the service of the component `name` of `bundle`, invalid while there is none.
cppmicroservices::ServiceReferenceU serviceOf(const Bundle& bundle, const std::string& name) {
  if (bundle.GetState() != Bundle::STATE_ACTIVE) return {};
  for (const auto& service : bundle.GetRegisteredServices()) {
    if (propertyOf(service, "component.name") == name) return service;
  }
  return {};
}

std::string didYouMean(const std::string& similar) {
  return similar.empty() ? "" : " (did you mean \"" + similar + "\"?)";
}

Problem describeMissing(const std::string& file, const std::string& component,
                        const MissingService& missing) {
  std::string what = "the component " + component + " waits for the service \"" +
                     missing.reference.interfaceId + "\" (its reference \"" +
                     missing.reference.name + "\"), which ";
  if (missing.provider.empty()) {
    what += "neither the program nor a bundle provides" + didYouMean(missing.similar);
    return {.file = file,
            .place = {},
            .what = what,
            .remedy =
                "correct \"interface\" in the manifest, or add the bundle that provides it "
                "with --bundle"};
  }
  what += "only the component " + missing.provider + " provides, and that is not registered either";
  return {
      .file = file, .place = {}, .what = what, .remedy = "correct what that component waits for"};
}

Problem describeUnused(const std::string& file, const Component& component,
                       const std::set<std::string>& lookedUp) {
  std::string what = "the component " + component.name + " provides ";
  std::string similar;
  for (const std::string& interfaceId : component.interfaceIds) {
    what += (interfaceId == component.interfaceIds.front() ? "\"" : ", \"") + interfaceId + "\"";
    if (similar.empty()) similar = findSimilar(lookedUp, interfaceId);
  }
  what += ", which neither the program nor a bundle looks up" + didYouMean(similar);
  return {.file = file,
          .place = {},
          .what = what,
          .remedy =
              "correct \"interfaces\" in the manifest and in QUENLITH_COMPONENT, or leave "
              "the bundle out"};
}

/// Returns what the library has in place of the function `wanted`.
std::string describeOtherFactory(const std::vector<std::string>& symbols,
                                 const std::string& wanted) {
  std::set<std::string> factories;
  std::ranges::copy_if(symbols, std::inserter(factories, factories.end()),
                       [](const std::string& name) { return name.starts_with("NewInstance_"); });
  if (factories.size() == 1) return ", but " + *factories.begin();
  const std::string similar = findSimilar(factories, wanted);
  return similar.empty() ? "" : ", but " + similar;
}

}  // namespace

RunningBundles::RunningBundles(OnProblem onProblem)
    : onProblem(onProblem),
      framework(std::make_shared<cppmicroservices::Framework>(
          cppmicroservices::FrameworkFactory().NewFramework())) {
  framework->Start();
  setFramework(framework);
  listen();
}

RunningBundles::~RunningBundles() {
  stop();
}

void RunningBundles::listen() {
  const auto listener = [kept = events, reporting = isReporting](const FrameworkEvent& event) {
    if (*reporting) return reportEvent(event);
    if (event.GetType() != FrameworkEvent::FRAMEWORK_ERROR) return;
    const Bundle bundle = event.GetBundle();
    const std::lock_guard lock(kept->mutex);
    if (saysOutOfMemory(event.GetMessage())) kept->isOutOfMemory = true;
    kept->errors.push_back({bundle ? bundle.GetLocation() : "", event.GetMessage()});
  };
  framework->GetBundleContext().AddFrameworkListener(listener);
}

void RunningBundles::start(const std::string& file, BundleRole role) {
  if (findBundle(file) != nullptr) return;
  StartedBundle& bundle = started.emplace_back(StartedBundle{.file = file, .role = role});
  const std::string own = quenlith::elf::loadedFramework().value_or("");
  if (const auto fault = quenlith::elf::checkBundleLibrary(file, own)) {
    return note(&bundle, {.file = file, .place = {}, .what = fault->what, .remedy = fault->remedy});
  }
  try {
    install(bundle);
  } catch (const diagnostics::ProblemError&) {
    throw;
  } catch (const std::exception& error) {
    if (saysOutOfMemory(error.what())) throw std::bad_alloc();
    note(&bundle, describeFault(file, absolute(file), error.what()));
  }
  noteEvents();
}

// A library may contain several bundles: they are one to the user.
void RunningBundles::install(StartedBundle& bundle) {
  // The loader searches for a name without a slash elsewhere.
  for (Bundle& installed : framework->GetBundleContext().InstallBundles(absolute(bundle.file))) {
    bundle.bundle = installed;
    for (Component& component : readComponents(installed.GetHeaders())) {
      bundle.components.push_back({.component = std::move(component)});
    }
    checkFactories(bundle);
    if (!bundle.hasProblem) installed.Start();
  }
}

void RunningBundles::checkFactories(StartedBundle& bundle) {
  if (bundle.components.empty()) return;
  const std::vector<std::string> symbols = quenlith::elf::readDefinedSymbols(bundle.file);
  for (ComponentState& state : bundle.components) {
    const std::string wanted = factoryOf(state.component.name);
    if (symbols.empty() || std::ranges::find(symbols, wanted) != symbols.end()) continue;
    const std::string symbol = wanted.substr(wanted.find('_') + 1);
    state.hasFailed = true;
    note(&bundle,
         {.file = bundle.file,
          .place = {},
          .what = "the component " + state.component.name +
                  " is in the manifest, and the library has no function " + wanted +
                  describeOtherFactory(symbols, wanted),
          .remedy = "correct \"implementation-class\" in the manifest, or add QUENLITH_COMPONENT(" +
                    symbol + ", ...) to a source of the bundle"});
  }
}

void RunningBundles::registerAppendix(const std::shared_ptr<MarkerAppendix>& appendix) {
  registration = framework->GetBundleContext().RegisterService<AppendixBuilder>(
      std::shared_ptr<AppendixBuilder>(appendix));
}

void RunningBundles::note(StartedBundle* bundle, Problem problem) {
  if (bundle != nullptr) {
    bundle->hasProblem = true;
    const std::string shortage = remedyForShortage(problem.what);
    if (!shortage.empty()) {
      problem.remedy = shortage;
    } else if (bundle->role != BundleRole::kExtension) {
      problem.remedy = "install the program again";
    }
  }
  if (onProblem == OnProblem::kThrow) throw diagnostics::ProblemError(std::move(problem));
  found.push_back(std::move(problem));
}

/// Takes `cause` for the bundle of an error that names none: an installed framework reports some as
/// errors of itself.
void RunningBundles::noteEvents(StartedBundle* cause) {
  std::vector<Event> errors;
  {
    const std::lock_guard lock(events->mutex);
    if (events->isOutOfMemory) throw std::bad_alloc();
    errors.swap(events->errors);
  }
  for (const Event& error : errors) {
    StartedBundle* named = error.location.empty() ? nullptr : findBundle(error.location);
    StartedBundle* bundle = named == nullptr ? cause : named;
    note(bundle, describeFault(bundle == nullptr ? "tessera" : bundle->file, error.location,
                               error.message));
  }
}

StartedBundle* RunningBundles::findBundle(const std::string& location) {
  const auto bundle =
      std::ranges::find(started, canonical(location),
                        [](const StartedBundle& other) { return canonical(other.file); });
  return bundle == started.end() ? nullptr : &*bundle;
}

void RunningBundles::settle() {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!isSettled() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kPause);
  }
  // Without the runtime, nothing more is known about the components of the others.
  if (started.front().hasProblem) return;
  for (StartedBundle& bundle : started) {
    noteMissing(bundle);
    noteUnused(bundle);
  }
  for (StartedBundle& bundle : started) create(bundle);
}

/// Returns whether each component is registered or cannot be.
bool RunningBundles::isSettled() {
  noteEvents();
  findRegistered();
  findMissingServices(started, registeredInterfaces());
  return started.front().hasProblem ||
         std::ranges::all_of(started, [](const StartedBundle& bundle) {
           return bundle.hasProblem ||
                  std::ranges::all_of(bundle.components, [](const ComponentState& state) {
                    return state.isRegistered || !state.component.isAutomatic ||
                           !state.missing.empty();
                  });
         });
}

void RunningBundles::findRegistered() {
  for (StartedBundle& bundle : started) {
    for (ComponentState& state : bundle.components) {
      if (bundle.bundle && serviceOf(bundle.bundle, state.component.name)) {
        state.isRegistered = true;
      }
    }
  }
}

std::set<std::string> RunningBundles::registeredInterfaces() const {
  std::set<std::string> interfaceIds;
  for (const Bundle& bundle : framework->GetBundleContext().GetBundles()) {
    if (bundle.GetState() != Bundle::STATE_ACTIVE) continue;
    for (const auto& service : bundle.GetRegisteredServices()) {
      const cppmicroservices::Any ids =
          service.GetProperty(cppmicroservices::Constants::OBJECTCLASS);
      const auto* list = cppmicroservices::any_cast<std::vector<std::string>>(&ids);
      if (list != nullptr) interfaceIds.insert(list->begin(), list->end());
    }
  }
  return interfaceIds;
}

void RunningBundles::noteMissing(StartedBundle& bundle) {
  if (bundle.hasProblem) return;
  for (const ComponentState& state : bundle.components) {
    if (state.isRegistered || !state.component.isAutomatic) continue;
    for (const MissingService& missing : state.missing) {
      note(&bundle, describeMissing(bundle.file, state.component.name, missing));
    }
    if (!state.missing.empty()) continue;
    note(&bundle, {.file = bundle.file,
                   .place = {},
                   .what = "the component " + state.component.name +
                           " is not registered 10 seconds after its bundle was started",
                   .remedy = "leave the bundle out, or report it"});
  }
}

/// Returns the interfaces that the program looks up and those that components refer to.
std::set<std::string> RunningBundles::interfacesLookedUp() const {
  using namespace quenlith::build::markup;
  std::set<std::string> names{
      us_service_interface_iid<SnippetParser>(),
      us_service_interface_iid<code::CodeElementParser>(),
      us_service_interface_iid<contributordata::LineContributorDataParser>()};
  for (const StartedBundle& bundle : started) {
    for (const ComponentState& state : bundle.components) {
      for (const Reference& reference : state.component.references) {
        names.insert(reference.interfaceId);
      }
    }
  }
  return names;
}

void RunningBundles::noteUnused(StartedBundle& bundle) {
  // A bundle with an activator may look its own services up.
  if (bundle.role != BundleRole::kExtension || bundle.hasProblem) return;
  if (hasActivator(bundle.bundle.GetHeaders())) return;
  const std::set<std::string> lookedUp = interfacesLookedUp();
  for (const ComponentState& state : bundle.components) {
    const auto& provided = state.component.interfaceIds;
    if (provided.empty()) continue;
    if (std::ranges::any_of(provided, [&](const auto& id) { return lookedUp.contains(id); })) {
      continue;
    }
    note(&bundle, describeUnused(bundle.file, state.component, lookedUp));
  }
}

void RunningBundles::create(StartedBundle& bundle) {
  if (bundle.hasProblem) return;
  for (ComponentState& state : bundle.components) {
    const auto service = serviceOf(bundle.bundle, state.component.name);
    if (!service) continue;
    created.push_back(framework->GetBundleContext().GetService(service));
    noteEvents(&bundle);
    state.hasFailed = created.back() == nullptr || created.back()->empty();
    if (!state.hasFailed || bundle.hasProblem) continue;
    note(&bundle, {.file = bundle.file,
                   .place = {},
                   .what = "the component " + state.component.name + " cannot be created",
                   .remedy = "let its constructor do nothing that can fail"});
  }
}

void RunningBundles::stop() noexcept {
  setFramework(nullptr);
  try {
    created.clear();
    for (auto bundle = started.rbegin(); bundle != started.rend(); ++bundle) {
      // The runtime stops after the appendix is unregistered: it makes the parsers release it.
      if (bundle + 1 == started.rend() && registration) registration.Unregister();
      if (bundle->bundle) bundle->bundle.Stop();
    }
    framework->Stop();
    framework->WaitForStop(std::chrono::milliseconds::zero());
  } catch (const std::exception&) {
    // The process is about to end, or another error is on its way to the user.
  }
}

}  // namespace tessera::host
