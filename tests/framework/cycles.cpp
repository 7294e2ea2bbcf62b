// Runs whole life cycles of a bundle while other threads use what it registers.
//
// usage: framework_cycles [COUNT [alone]]
//
// Each cycle installs the bundle `active`, starts it, gets the service that it registers, stops and
// uninstalls it. Meanwhile two threads look the service up and use it, one through a tracker, and
// one thread registers and unregisters services of the same interface. Fails when the framework
// reports a problem, or when anything is left after a cycle. With `alone` there are no other
// threads: with them, CppMicroServices 3.8.12 crashes.

#include <atomic>
#include <chrono>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceTracker.h>

#include "parts.hpp"

namespace {

using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::FrameworkEvent;

constexpr long kDefaultCount = 200;

class HostWord : public demo::Word {
 public:
  std::string text() const override { return "host"; }
};

void require(bool condition, const char* claim) {
  if (!condition) throw std::runtime_error(claim);
}

bool isKnown(const std::string& text) {
  return text == "host" || text == "demo_active" || text == "stopped";
}

/// The text of a word whose bundle may stop meanwhile.
std::string textOf(const demo::Word& word) {
  try {
    return word.text();
  } catch (const std::runtime_error&) {
    return "stopped";
  }
}

/// The threads that use services while bundles come and go.
class Users {
 public:
  explicit Users(const BundleContext& context) : context(context) {}

  void begin() {
    threads.emplace_back([this] { run(&Users::lookUp); });
    threads.emplace_back([this] { run(&Users::track); });
    threads.emplace_back([this] { run(&Users::provide); });
  }

  /// Ends the threads and returns how often they used a service.
  long end() {
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    threads.clear();
    require(!hasFailed, "a thread that uses services failed");
    return uses;
  }

 private:
  void run(void (Users::*use)()) {
    try {
      while (!isOver) (this->*use)();
    } catch (const std::exception& error) {
      std::cerr << "a user of services failed: " << error.what() << '\n';
      hasFailed = true;
    }
  }

  void lookUp() {
    for (const auto& reference : context.GetServiceReferences<demo::Word>()) {
      try {
        use(context.GetService(reference));
      } catch (const std::invalid_argument&) {
        // It was unregistered after the lookup.
      }
    }
  }

  void track() {
    cppmicroservices::ServiceTracker<demo::Word> tracker(context);
    tracker.Open();
    for (int round = 0; round < 10; ++round) use(tracker.GetService());
  }

  void provide() { context.RegisterService<demo::Word>(std::make_shared<HostWord>()).Unregister(); }

  void use(const std::shared_ptr<demo::Word>& word) {
    if (!word) return;
    require(isKnown(textOf(*word)), "a service has an unknown text");
    ++uses;
  }

  BundleContext context;
  std::atomic<bool> isOver = false;
  std::atomic<bool> hasFailed = false;
  std::atomic<long> uses = 0;
  std::vector<std::thread> threads;
};

void runCycle(BundleContext context) {
  Bundle bundle = context.InstallBundles(std::string(BUNDLE_FOLDER) + "/active.so").at(0);
  require(bundle.GetState() == Bundle::STATE_INSTALLED, "the bundle is not installed");
  bundle.Start();
  require(bundle.GetState() == Bundle::STATE_ACTIVE, "the bundle is not active");
  const auto services = bundle.GetRegisteredServices();
  require(services.size() == 1, "the bundle has not registered its service");
  require(context.GetService(services.front()) != nullptr, "the service cannot be got");
  bundle.Stop();
  require(!services.front(), "the service is still registered");
  bundle.Uninstall();
  require(context.GetBundles().size() == 1, "the bundle is still installed");
}

void runCycles(long count, bool isAlone) {
  auto framework = cppmicroservices::FrameworkFactory().NewFramework();
  framework.Start();
  std::atomic<long> problems = 0;
  framework.GetBundleContext().AddFrameworkListener([&](const FrameworkEvent& event) {
    if (event.GetType() != FrameworkEvent::FRAMEWORK_ERROR) return;
    ++problems;
    std::cerr << event.GetMessage() << '\n';
  });
  const auto context = framework.GetBundleContext();
  Users users(context);
  if (!isAlone) users.begin();
  try {
    for (long cycle = 0; cycle < count; ++cycle) runCycle(context);
  } catch (...) {
    users.end();
    throw;
  }
  std::cout << count << " cycles, " << users.end() << " uses of services meanwhile\n";
  require(problems == 0, "the framework reported problems");
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
}

}  // namespace

int main(int argc, char** argv) {
  try {
    runCycles(argc > 1 ? std::stol(argv[1]) : kDefaultCount, argc > 2);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "framework_cycles: " << error.what() << '\n';
    return 1;
  }
}
