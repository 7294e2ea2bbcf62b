#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "quenlith/shared/appendix/MarkerAppendix.hpp"
#include "tessera/diagnostics/Problem.hpp"
#include "tessera/host/StartedBundle.hpp"

namespace tessera::host {

/// What happens when a bundle cannot be used: it is thrown as a ProblemError, or it is collected
/// and the next bundle is started.
enum class OnProblem { kThrow, kCollect };

/// Runs a framework with bundles in it, and finds out what is wrong with them.
class RunningBundles {
 public:
  /// Starts a framework without bundles.
  explicit RunningBundles(OnProblem onProblem);

  /// Stops everything in the opposite order. Services that are still held may be released later,
  /// but not used.
  ~RunningBundles();
  RunningBundles(const RunningBundles&) = delete;
  RunningBundles& operator=(const RunningBundles&) = delete;

  /// Starts the bundle `file`. The Declarative Services runtime must be the first one.
  void start(const std::string& file, BundleRole role);

  /// Registers `appendix` as a service.
  void registerAppendix(
      const std::shared_ptr<quenlith::shared::appendix::MarkerAppendix>& appendix);

  /// Waits until the services of all components are registered, unless they cannot be, and says
  /// what is wrong with the components of all bundles. All components are created: one that cannot
  /// be created later would be missing in documents without an error.
  void settle();

  /// Reports errors and warnings of the framework to the user from now on.
  void reportEvents() noexcept { isReporting->store(true); }

  const std::vector<StartedBundle>& bundles() const noexcept { return started; }
  const std::vector<diagnostics::Problem>& problems() const noexcept { return found; }
  cppmicroservices::BundleContext context() const { return framework->GetBundleContext(); }

 private:
  /// An error that the framework has reported.
  struct Event {
    std::string location;
    std::string message;
  };
  /// Shared with the listener, which the framework may call after this object is destroyed.
  struct Events {
    std::mutex mutex;
    std::vector<Event> errors;
    // Whether there was not enough memory for something that the framework or a bundle did.
    bool isOutOfMemory = false;
  };

  void listen();
  void install(StartedBundle& bundle);
  void checkFactories(StartedBundle& bundle);
  void note(StartedBundle* bundle, diagnostics::Problem problem);
  void noteEvents(StartedBundle* cause = nullptr);
  StartedBundle* findBundle(const std::string& location);

  bool isSettled();
  void findRegistered();
  std::set<std::string> registeredInterfaces() const;
  void noteMissing(StartedBundle& bundle);
  void noteUnused(StartedBundle& bundle);
  void create(StartedBundle& bundle);
  std::set<std::string> interfacesLookedUp() const;
  void stop() noexcept;

  const OnProblem onProblem;
  std::shared_ptr<cppmicroservices::Framework> framework;
  std::shared_ptr<Events> events = std::make_shared<Events>();
  std::shared_ptr<std::atomic<bool>> isReporting = std::make_shared<std::atomic<bool>>(false);
  cppmicroservices::ServiceRegistration<quenlith::shared::appendix::AppendixBuilder> registration;
  std::vector<StartedBundle> started;
  std::vector<diagnostics::Problem> found;
  // The components that were created, so that no runtime destroys them and creates them again.
  std::vector<cppmicroservices::InterfaceMapConstPtr> created;
};

}  // namespace tessera::host
