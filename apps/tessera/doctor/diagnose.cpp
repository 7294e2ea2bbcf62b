#include "tessera/doctor/diagnose.hpp"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/ServiceReference.h"
#include "quenlith/elf/LibraryName.hpp"
#include "quenlith/elf/loadedLibraries.hpp"
#include "tessera/host/RunningBundles.hpp"
#include "tessera/host/describeFault.hpp"
#include "tessera/host/startBundles.hpp"

namespace tessera::doctor {
namespace {

namespace elf = quenlith::elf;
namespace fs = std::filesystem;
using cppmicroservices::ServiceReferenceU;
using host::BundleRole;

Library describeLibrary(const std::string& file) {
  const elf::LibraryName name(fs::path(file).filename().string());
  return {name.stem, name.version, fs::path(file).lexically_normal().string()};
}

void describeProgram(Diagnosis& diagnosis) {
  diagnosis.program = {"tessera", TESSERA_VERSION, fs::read_symlink("/proc/self/exe").string()};
  for (const std::string& file : elf::loadedLibraries()) {
    const elf::LibraryName name(fs::path(file).filename().string());
    if (name.isOurs() || name.framework() != elf::Framework::kNone) {
      diagnosis.libraries.push_back(describeLibrary(file));
    }
  }
  std::ranges::sort(diagnosis.libraries, {}, &Library::name);
  const std::string framework = elf::loadedFramework().value_or("");
  diagnosis.framework = describeLibrary(framework);
  const elf::LibraryName name(fs::path(framework).filename().string());
  diagnosis.frameworkKind =
      name.framework() == elf::Framework::kEmbedded ? "embedded" : "installed";
}

std::string nameOf(BundleRole role) {
  switch (role) {
    case BundleRole::kRuntime:
      return "runtime";
    case BundleRole::kParsers:
      return "parsers";
    case BundleRole::kPieces:
      return "pieces";
    case BundleRole::kExtension:
      return "extension";
  }
  return "";
}

std::string stateOf(const host::StartedBundle& bundle, const host::ComponentState& state) {
  if (state.hasFailed) return "failed";
  if (state.isRegistered) return "ready";
  const bool isActive =
      bundle.bundle && bundle.bundle.GetState() == cppmicroservices::Bundle::STATE_ACTIVE;
  if (!isActive) return "unknown";
  return state.missing.empty() ? "failed" : "waiting";
}

Component describeComponent(const host::StartedBundle& bundle, const host::ComponentState& state) {
  Component component{.name = state.component.name,
                      .state = stateOf(bundle, state),
                      .interfaceIds = state.component.interfaceIds,
                      .waits = {}};
  for (const host::MissingService& missing : state.missing) {
    component.waits.push_back(
        {missing.reference.name, missing.reference.interfaceId, missing.provider});
  }
  return component;
}

std::string headerOf(const cppmicroservices::Bundle& bundle, const std::string& key) {
  const auto& headers = bundle.GetHeaders();
  const auto entry = headers.find(key);
  if (entry == headers.end()) return "";
  const auto* text = cppmicroservices::any_cast<std::string>(&entry->second);
  return text == nullptr ? "" : *text;
}

Bundle describeBundle(const host::StartedBundle& started) {
  Bundle bundle;
  bundle.role = nameOf(started.role);
  bundle.file = fs::path(started.file).lexically_normal().string();
  bundle.state = "refused";
  if (started.bundle) {
    bundle.name = started.bundle.GetSymbolicName();
    bundle.version = headerOf(started.bundle, cppmicroservices::Constants::BUNDLE_VERSION);
    const bool isActive = started.bundle.GetState() == cppmicroservices::Bundle::STATE_ACTIVE;
    bundle.state = isActive ? "active" : "installed";
  }
  for (const host::ComponentState& state : started.components) {
    bundle.components.push_back(describeComponent(started, state));
  }
  return bundle;
}

template <class Value>
Value propertyOf(const ServiceReferenceU& service, const std::string& key) {
  const cppmicroservices::Any property = service.GetProperty(key);
  const auto* value = cppmicroservices::any_cast<Value>(&property);
  return value == nullptr ? Value() : *value;
}

Service describeService(const ServiceReferenceU& service) {
  namespace Constants = cppmicroservices::Constants;
  return {.interfaceIds = propertyOf<std::vector<std::string>>(service, Constants::OBJECTCLASS),
          .ranking = propertyOf<int>(service, Constants::SERVICE_RANKING),
          .component = propertyOf<std::string>(service, "component.name"),
          .bundle = service.GetBundle().GetSymbolicName(),
          .testId = propertyOf<std::string>(service, "test_id"),
          .isDefault = propertyOf<std::string>(service, "priority") == "default"};
}

/// Services of interfaces that the framework keeps for itself say nothing to the user.
bool isOfTheFramework(const Service& service) {
  return std::ranges::all_of(service.interfaceIds, [](const std::string& interfaceId) {
    return interfaceId.starts_with("cppmicroservices::");
  });
}

void describeServices(cppmicroservices::BundleContext context, std::vector<Service>& services) {
  std::vector<ServiceReferenceU> references;
  for (const cppmicroservices::Bundle& bundle : context.GetBundles()) {
    if (bundle.GetState() != cppmicroservices::Bundle::STATE_ACTIVE) continue;
    for (const auto& service : bundle.GetRegisteredServices()) references.push_back(service);
  }
  // The order in which a lookup returns them.
  std::ranges::sort(references, [](const auto& a, const auto& b) { return b < a; });
  for (const ServiceReferenceU& reference : references) {
    Service service = describeService(reference);
    if (!isOfTheFramework(service)) services.push_back(std::move(service));
  }
}

}  // namespace

Diagnosis diagnose(const std::vector<std::string>& extensionBundles) {
  Diagnosis diagnosis;
  describeProgram(diagnosis);
  try {
    host::RunningBundles running(host::OnProblem::kCollect);
    startBundles(running, std::make_shared<quenlith::shared::appendix::MarkerAppendix>(),
                 host::Pieces::kKept, extensionBundles);
    for (const host::StartedBundle& bundle : running.bundles()) {
      diagnosis.bundles.push_back(describeBundle(bundle));
    }
    describeServices(running.context(), diagnosis.services);
    diagnosis.problems = running.problems();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    const std::string shortage = host::remedyForShortage(error.what());
    diagnosis.problems.push_back(
        {.file = "tessera",
         .place = {},
         .what = std::string("the framework failed: ") + error.what(),
         .remedy = shortage.empty() ? "install the program again" : shortage});
  }
  return diagnosis;
}

Diagnosis describeEnd(const std::string& how) {
  Diagnosis diagnosis;
  describeProgram(diagnosis);
  diagnosis.problems.push_back(
      {.file = "tessera",
       .place = {},
       .what = "a bundle ended the process that started it " + how,
       .remedy = "name fewer bundles, to find out which one it is, and leave that one out"});
  return diagnosis;
}

}  // namespace tessera::doctor
