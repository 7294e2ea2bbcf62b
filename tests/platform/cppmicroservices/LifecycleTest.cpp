#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/IllegalStateException.h>
#include <cppmicroservices/ServiceEvent.h>
#include <cppmicroservices/ServiceTracker.h>
#include <dlfcn.h>

#include <filesystem>
#include <functional>
#include <future>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unordered_set>
#include <utility>

#include "framework/broken/BundleFile.hpp"
#include "platform/cppmicroservices/HostFramework.hpp"
#include "platform/cppmicroservices/Script.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;

class Lifecycle : public HostFramework {
 protected:
  Lifecycle() { prepare(); }

  void prepare() {
    registration = context.RegisterService<Script>(script);
    bundle = context.InstallBundles(SCRIPTED_BUNDLE).at(0);
  }

  // Makes a bundle from a library that exports no functions for frameworks; returns its path.
  static std::string bare() {
    const std::string library = readBytes(BARE_LIBRARY);
    std::string path = std::string(WORK_FOLDER) + "/bare.so";
    std::filesystem::create_directories(WORK_FOLDER);
    // Removed first: the file may be loaded in this process, which must keep the old one.
    std::filesystem::remove(path);
    writeBytes(path,
               library + makeArchive({{"bare/manifest.json", R"({"bundle.symbolic_name":"bare"})"}},
                                     library.size()));
    return path;
  }

  std::shared_ptr<Script> script = std::make_shared<Script>();
  ServiceRegistration<Script> registration;
  Bundle bundle;
};

template <class Call>
std::string textOf(const Call& call) {
  try {
    call();
    return "";
  } catch (const std::exception& exception) {
    return exception.what();
  }
}

TEST_F(Lifecycle, BundleCannotChangeItsOwnState) {
  int refused = 0;
  const auto tryAll = [&](BundleContext own) {
    Bundle self = own.GetBundle();
    const std::vector<void (Bundle::*)()> operations = {&Bundle::Start, &Bundle::Stop,
                                                        &Bundle::Uninstall};
    for (const auto operation : operations) {
      EXPECT_THROW((self.*operation)(), std::logic_error);
      ++refused;
    }
  };
  script->start = tryAll;
  script->stop = tryAll;
  bundle.Start();
  bundle.Stop();
  EXPECT_EQ(refused, 6);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, BundleWhoseActivatorCannotBeCreatedDoesNotStart) {
  script->make = [] { throw std::runtime_error("not today"); };
  EXPECT_EQ(
      textOf([&] { bundle.Start(); }),
      bundle.GetLocation() + ": the activator of the bundle scripted failed to start: not today");
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
  script->make = [] {};
  bundle.Start();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(Lifecycle, LibraryHasAContextWhileItsBundleRuns) {
  script->start = [this](const BundleContext& given) {
    EXPECT_TRUE(script->contextOfBundle() == given);
  };
  script->stop = [this](const BundleContext& given) {
    EXPECT_TRUE(script->contextOfBundle() == given);
  };
  bundle.Start();
  EXPECT_EQ(script->contextOfBundle().GetBundle(), bundle);
  bundle.Stop();
  EXPECT_FALSE(script->contextOfBundle());
}

TEST_F(Lifecycle, StoredContextMayBeUsedAfterItsBundleIsUninstalled) {
  bundle.Start();
  BundleContextPrivate* const stored = script->storedContext();
  EXPECT_EQ(detail::MakeBundleContext(stored).GetBundle(), bundle);
  bundle.Uninstall();
  EXPECT_FALSE(detail::MakeBundleContext(stored));
  bundle = {};
  EXPECT_FALSE(detail::MakeBundleContext(stored));
}

TEST_F(Lifecycle, StopWaitsForAStartInAnotherThread) {
  std::promise<void> entered;
  std::promise<void> leave;
  script->start = [&](const BundleContext&) {
    entered.set_value();
    leave.get_future().wait();
  };
  auto starting = std::async(std::launch::async, [&] { bundle.Start(); });
  entered.get_future().wait();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_STARTING);
  auto stopping = std::async(std::launch::async, [&] { bundle.Stop(); });
  EXPECT_EQ(stopping.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  leave.set_value();
  starting.get();
  stopping.get();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, WaitingForAnotherThreadTimesOut) {
  std::promise<void> entered;
  std::promise<void> leave;
  script->start = [&](const BundleContext&) {
    entered.set_value();
    leave.get_future().wait();
  };
  auto starting = std::async(std::launch::async, [&] { bundle.Start(); });
  entered.get_future().wait();
  EXPECT_EQ(textOf([&] { bundle.Stop(); }),
            "the bundle scripted is still starting or stopping in another thread");
  leave.set_value();
  starting.get();
}

TEST_F(Lifecycle, FrameworkIsStoppedByAListenerOfItsStart) {
  stop();
  Framework other = FrameworkFactory().NewFramework();
  other.Init();
  FrameworkEvent end;
  other.GetBundleContext().AddFrameworkListener([&](const FrameworkEvent& event) {
    if (event.GetType() != FrameworkEvent::FRAMEWORK_STARTED) return;
    other.Stop();
    end = other.WaitForStop(std::chrono::milliseconds::zero());
  });
  other.Start();
  EXPECT_EQ(end.GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
  EXPECT_EQ(other.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, ListenerOfTheStopOfAFrameworkCannotWaitForItsEnd) {
  FrameworkEvent waited;
  context.AddBundleListener([&](const BundleEvent& event) {
    if (event.GetBundle() != framework) return;
    waited = framework.WaitForStop(std::chrono::milliseconds::zero());
  });
  stop();
  EXPECT_EQ(waited.GetType(), FrameworkEvent::FRAMEWORK_ERROR);
  EXPECT_EQ(waited.GetMessage(),
            "the framework cannot stop before this thread has ended the start or stop of a bundle "
            "that it is in");
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, FrameworkStoppedByAnActivatorStopsAfterIt) {
  int stops = 0;
  FrameworkEvent waited;
  Bundle second = context.InstallBundles(bare()).at(0);
  second.Start();
  script->start = [&](BundleContext own) {
    framework.Stop();
    EXPECT_EQ(framework.GetState(), Bundle::STATE_STOPPING);
    EXPECT_EQ(second.GetState(), Bundle::STATE_INSTALLED);
    waited = framework.WaitForStop(std::chrono::milliseconds::zero());
    framework.Stop();
    EXPECT_THROW(framework.Start(), std::runtime_error);
    EXPECT_EQ(own.GetBundle().GetState(), Bundle::STATE_STARTING);
  };
  script->stop = [&](const BundleContext& /*own*/) { ++stops; };
  bundle.Start();
  EXPECT_EQ(waited.GetType(), FrameworkEvent::FRAMEWORK_ERROR);
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_STOPPED);
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_FALSE(context);
  EXPECT_TRUE(errors.empty());
  *script = Script();
  start();
  prepare();
  bundle.Start();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(Lifecycle, FrameworkStoppedByAnActivatorThatThrowsStops) {
  script->start = [&](const BundleContext& /*own*/) {
    framework.Stop();
    throw std::runtime_error("no");
  };
  EXPECT_THROW(bundle.Start(), std::runtime_error);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, FrameworkStoppedWhileABundleStopsStopsAfterIt) {
  script->stop = [&](const BundleContext& /*own*/) { framework.Stop(); };
  bundle.Start();
  bundle.Stop();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Lifecycle, FrameworkStoppedWhileABundleIsUninstalledStopsAfterIt) {
  script->stop = [&](const BundleContext& /*own*/) { framework.Stop(); };
  bundle.Start();
  bundle.Uninstall();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_UNINSTALLED);
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
}

// Waits as long as a stop waits for a start in another thread, 5 seconds.
TEST_F(Lifecycle, FrameworkStopsAfterAStartThatTakesTooLong) {
  std::promise<void> entered;
  std::promise<void> leave;
  int stops = 0;
  script->start = [&](const BundleContext& /*own*/) {
    entered.set_value();
    leave.get_future().wait();
  };
  script->stop = [&](const BundleContext& /*own*/) { ++stops; };
  auto starting = std::async(std::launch::async, [&] { bundle.Start(); });
  entered.get_future().wait();
  framework.Stop();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_STOPPING);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_STARTING);
  leave.set_value();
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_STOPPED);
  starting.get();
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
}

TEST_F(Lifecycle, BundlesStopInTheReverseOrderOfTheirInstallation) {
  Bundle second = context.InstallBundles(bare()).at(0);
  // Started in the other order, which does not count.
  second.Start();
  bundle.Start();
  std::vector<std::string> stopped;
  context.AddBundleListener([&](const BundleEvent& event) {
    if (event.GetType() == BundleEvent::BUNDLE_STOPPED) {
      stopped.push_back(event.GetBundle().GetSymbolicName());
    }
  });
  stop();
  EXPECT_EQ(stopped, (std::vector<std::string>{"bare", "scripted"}));
}

TEST_F(Lifecycle, LibraryHasItsContextUntilItsServicesAreGone) {
  std::vector<bool> valid;
  script->start = [&](BundleContext own) {
    const auto greeter = std::shared_ptr<Hello>(new Hello, [&](const Hello* object) {
      valid.push_back(static_cast<bool>(script->contextOfBundle()));
      delete object;
    });
    (void)own.RegisterService<Greeter>(greeter);
  };
  bundle.Start();
  bundle.Stop();
  EXPECT_EQ(valid, std::vector<bool>{true});
}

TEST_F(Lifecycle, HandleMayBeReplacedDuringItsCall) {
  Bundle handle = bundle;
  script->start = [&](const BundleContext& /*own*/) { handle = nullptr; };
  handle.Start();
  EXPECT_FALSE(handle);
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(Lifecycle, StopReleasesWhatTheBundleLeaves) {
  std::shared_ptr<Script> held;
  BundleContext own;
  int heard = 0;
  script->start = [&](BundleContext given) {
    own = given;
    held = given.GetService(given.GetServiceReference<Script>());
    (void)given.RegisterService<Greeter>(std::make_shared<Hello>());
    given.AddServiceListener([&](const ServiceEvent&) { ++heard; });
  };
  bundle.Start();
  EXPECT_EQ(bundle.GetRegisteredServices().size(), 1U);
  EXPECT_EQ(bundle.GetServicesInUse().size(), 1U);
  EXPECT_EQ(registration.GetReference().GetUsingBundles(), std::vector<Bundle>{bundle});
  bundle.Stop();
  EXPECT_TRUE(bundle.GetRegisteredServices().empty());
  EXPECT_TRUE(bundle.GetServicesInUse().empty());
  EXPECT_FALSE(context.GetServiceReference<Greeter>());
  EXPECT_FALSE(own);
  const int heardUntilStop = heard;
  auto later = context.RegisterService<Greeter>(std::make_shared<Hello>());
  EXPECT_EQ(heard, heardUntilStop);
}

TEST_F(Lifecycle, BundleGetsNothingMoreAtTheEndOfItsStop) {
  std::vector<std::string> refusals;
  script->start = [&](BundleContext own) {
    (void)own.RegisterService<Greeter>(std::make_shared<Hello>());
    own.AddServiceListener([&, own](const ServiceEvent& event) mutable {
      if (event.GetType() != ServiceEvent::SERVICE_UNREGISTERING) return;
      refusals.push_back(
          textOf([&] { (void)own.RegisterService<Greeter>(std::make_shared<Hello>()); }));
      refusals.push_back(textOf([&] { own.GetService(own.GetServiceReference<Script>()); }));
      refusals.push_back(textOf([&] { own.AddBundleListener([](const BundleEvent&) {}); }));
    });
  };
  bundle.Start();
  bundle.Stop();
  const std::string text = "The bundle context is no longer valid";
  EXPECT_EQ(refusals, (std::vector<std::string>{text, text, text}));
  EXPECT_FALSE(context.GetServiceReference<Greeter>());
}

TEST_F(Lifecycle, UninstallStopsAndReportsAFailedStop) {
  script->stop = [](const BundleContext&) { throw 5; };
  bundle.Start();
  bundle.Uninstall();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_UNINSTALLED);
  EXPECT_EQ(errors, std::vector<std::string>{
                        bundle.GetLocation() +
                        ": the bundle scripted failed to stop when it was uninstalled"});
  EXPECT_FALSE(context.GetBundle(bundle.GetBundleId()));
  EXPECT_EQ(bundle.GetSymbolicName(), "scripted");
  EXPECT_THROW(bundle.GetServicesInUse(), std::logic_error);
  EXPECT_THROW(bundle.GetRegisteredServices(), std::logic_error);
}

TEST_F(Lifecycle, FrameworkReportsAFailedStop) {
  std::vector<std::string> causes;
  context.AddFrameworkListener([&](const FrameworkEvent& event) {
    causes.push_back(textOf([&] { std::rethrow_exception(event.GetThrowable()); }));
  });
  script->stop = [](const BundleContext&) { throw std::runtime_error("not yet"); };
  bundle.Start();
  stop();
  EXPECT_EQ(errors,
            std::vector<std::string>{bundle.GetLocation() +
                                     ": the bundle scripted failed to stop with its framework"});
  EXPECT_EQ(causes, std::vector<std::string>{
                        bundle.GetLocation() +
                        ": the activator of the bundle scripted failed to stop: not yet"});
}

TEST_F(Lifecycle, BundleOfAStoppedFrameworkDoesNotStart) {
  bundle.Start();
  stop();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
  const std::string text =
      bundle.GetLocation() +
      ": the framework of the bundle scripted was stopped; start a framework and install the "
      "bundle again";
  EXPECT_EQ(textOf([&] { bundle.Start(); }), text);
  Bundle old = bundle;
  start();
  EXPECT_EQ(context.GetBundles().size(), 1U);
  prepare();
  EXPECT_EQ(textOf([&] { old.Start(); }), text);
  bundle.Start();
  EXPECT_FALSE(bundle == old);
  EXPECT_TRUE(old < bundle);
}

TEST_F(Lifecycle, BundleDoesNotStartWhileItsFrameworkStops) {
  Bundle second = context.InstallBundles(bare()).at(0);
  std::vector<std::string> texts;
  context.AddBundleListener([&](const BundleEvent& event) {
    if (event.GetType() != BundleEvent::BUNDLE_STOPPING) return;
    texts.push_back(textOf([&] { (event.GetBundle() == bundle ? second : bundle).Start(); }));
  });
  bundle.Start();
  stop();
  // Once when the framework begins to stop, and once when the bundle stops with it.
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_NE(texts[0].find("of the bundle scripted was stopped"), std::string::npos) << texts[0];
  EXPECT_NE(texts[1].find("of the bundle bare was stopped"), std::string::npos) << texts[1];
}

TEST_F(Lifecycle, NoBundleIsAddedWhileTheFrameworkStops) {
  std::string text;
  context.AddBundleListener([&](const BundleEvent& event) {
    if (event.GetType() != BundleEvent::BUNDLE_STOPPING) return;
    text = textOf([&] { context.InstallBundles(bare()); });
  });
  stop();
  EXPECT_EQ(text, "the framework stops: no bundle is added");
  start();
  EXPECT_EQ(context.GetBundles().size(), 1U);
}

TEST_F(Lifecycle, BundlesStartInAFrameworkThatIsInitialized) {
  stop();
  framework.Init();
  framework.Init();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_STARTING);
  context = framework.GetBundleContext();
  prepare();
  bundle.Start();
  EXPECT_EQ(bundle.GetState(), Bundle::STATE_ACTIVE);
  framework.Start();
  framework.Start();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(Lifecycle, LibraryWithoutFrameworkFunctionsIsABundle) {
  Bundle second = context.InstallBundles(bare()).at(0);
  EXPECT_THROW(second.GetSymbol(this, "bareNumber"), std::runtime_error);
  second.Start();
  void* const library = dlopen(second.GetLocation().c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr);
  void* const function = second.GetSymbol(library, "bareNumber");
  ASSERT_NE(function, nullptr);
  EXPECT_EQ(reinterpret_cast<int (*)()>(function)(), 42);
  EXPECT_EQ(second.GetSymbol(library, "noSuchFunction"), nullptr);
  EXPECT_THROW(second.GetSymbol(nullptr, "bareNumber"), std::invalid_argument);
  EXPECT_THROW(second.GetSymbol(library, ""), std::invalid_argument);
  dlclose(library);
}

TEST_F(Lifecycle, FrameworkRunsWhileAnObjectRefersToIt) {
  BundleContext kept;
  Bundle left;
  {
    Framework other = FrameworkFactory().NewFramework();
    other.Start();
    kept = other.GetBundleContext();
    left = kept.GetBundle();
  }
  EXPECT_TRUE(kept);
  EXPECT_EQ(Framework(left).GetState(), Bundle::STATE_ACTIVE);
  left = nullptr;
  EXPECT_FALSE(left);
  EXPECT_FALSE(kept);
}

TEST_F(Lifecycle, FrameworkWhoseHandlesAreGoneDoesNotStartAgain) {
  Bundle left;
  {
    Framework other = FrameworkFactory().NewFramework();
    other.Start();
    other.GetBundleContext().AddBundleListener(
        [&left](const BundleEvent& event) { left = event.GetBundle(); });
  }
  ASSERT_TRUE(left);
  Framework gone(left);
  const std::string text = "the framework has ended: its last handle was destroyed; create another";
  EXPECT_EQ(textOf([&] { gone.Start(); }), text);
  EXPECT_EQ(textOf([&] { gone.Init(); }), text);
  EXPECT_EQ(gone.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(gone.GetBundleContext());
  gone.Stop();
}

TEST_F(Lifecycle, BundleWhoseFrameworkIsGoneDoesNotStart) {
  Bundle left;
  {
    Framework other = FrameworkFactory().NewFramework();
    other.Start();
    other.GetBundleContext().InstallBundles(bare()).at(0).Start();
    other.GetBundleContext().AddBundleListener([&left](const BundleEvent& event) {
      if (event.GetType() == BundleEvent::BUNDLE_STOPPED) left = event.GetBundle();
    });
  }
  ASSERT_TRUE(left);
  EXPECT_NE(textOf([&] { left.Start(); }).find("the framework of the bundle bare was stopped"),
            std::string::npos);
  left.Stop();
  left.Uninstall();
}

TEST_F(Lifecycle, LibraryHasTheContextOfAFrameworkThatRuns) {
  bundle.Start();
  Framework other = FrameworkFactory().NewFramework();
  other.Start();
  BundleContext others = other.GetBundleContext();
  auto scripts = others.RegisterService<Script>(script);
  Bundle second = others.InstallBundles(SCRIPTED_BUNDLE).at(0);
  // The last start counts.
  second.Start();
  EXPECT_EQ(script->contextOfBundle().GetBundle(), second);
  second.Stop();
  EXPECT_EQ(script->contextOfBundle().GetBundle(), bundle);
  second.Start();
  bundle.Stop();
  EXPECT_EQ(script->contextOfBundle().GetBundle(), second);
  script->start = [](const BundleContext& /*own*/) { throw std::runtime_error("no"); };
  EXPECT_THROW(bundle.Start(), std::runtime_error);
  EXPECT_EQ(script->contextOfBundle().GetBundle(), second);
  second.Stop();
  EXPECT_FALSE(script->contextOfBundle());
}

TEST_F(Lifecycle, OnlyTheFrameworkIsAFramework) {
  EXPECT_EQ(Framework(context.GetBundle(0)), framework);
  EXPECT_THROW(Framework{bundle}, std::logic_error);
  EXPECT_THROW(Framework{Bundle()}, std::invalid_argument);
  EXPECT_THROW(framework.Uninstall(), std::runtime_error);
}

TEST_F(Lifecycle, FrameworkThatNeverRanHasNotStopped) {
  Framework other = FrameworkFactory().NewFramework();
  EXPECT_EQ(other.WaitForStop(std::chrono::milliseconds(1)).GetType(),
            FrameworkEvent::FRAMEWORK_ERROR);
  EXPECT_EQ(other.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_ERROR);
  other.Stop();
  EXPECT_EQ(other.GetState(), Bundle::STATE_INSTALLED);
}

TEST_F(Lifecycle, WaitingThreadIsToldAboutTheStop) {
  auto waiting = std::async(std::launch::async, [this] {
    return framework.WaitForStop(std::chrono::seconds(60)).GetType();
  });
  stop();
  EXPECT_EQ(waiting.get(), FrameworkEvent::FRAMEWORK_STOPPED);
}

// A thread that waits has to be woken and to lock before it sees the state, so that a stop and a
// start right after each other are usually over by then. On a busy machine some threads begin to
// wait only after the start.
TEST_F(Lifecycle, WaitingThreadIsToldAboutAStopBeforeAStart) {
  int toldCount = 0;
  for (int round = 0; round < 10; ++round) {
    auto waiting = std::async(std::launch::async, [this] {
      return framework.WaitForStop(std::chrono::seconds(1)).GetType();
    });
    waiting.wait_for(std::chrono::milliseconds(20));
    framework.Stop();
    framework.Start();
    if (waiting.get() == FrameworkEvent::FRAMEWORK_STOPPED) ++toldCount;
  }
  EXPECT_GE(toldCount, 5);
}

TEST_F(Lifecycle, WaitsAsLongAsItIsTold) {
  for (const auto time : {std::chrono::milliseconds::max(), std::chrono::milliseconds::max() / 2}) {
    auto waiting = std::async(std::launch::async,
                              [this, time] { return framework.WaitForStop(time).GetType(); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    stop();
    EXPECT_EQ(waiting.get(), FrameworkEvent::FRAMEWORK_STOPPED);
    framework.Start();
  }
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::min()).GetType(),
            FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT);
}

TEST_F(Lifecycle, TrackerWaitsAsLongAsItIsTold) {
  ServiceTracker<Greeter> tracker(context);
  const auto expectToWait = [&](auto time) {
    tracker.Open();
    auto waiting = std::async(std::launch::async, [&] { return tracker.WaitForService(time); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    auto greeter = context.RegisterService<Greeter>(std::make_shared<Hello>());
    EXPECT_NE(waiting.get(), nullptr);
    tracker.Close();
    greeter.Unregister();
  };
  expectToWait(std::chrono::milliseconds::max());
  expectToWait(std::chrono::nanoseconds::max());
  expectToWait(std::chrono::hours::max());
  expectToWait(std::chrono::duration<double>(1e300));
}

/// Runs `onCopy`, once, when a copy is made.
template <class Event>
struct Restarter {
  explicit Restarter(std::function<void()>& onCopy) : action(&onCopy) {}
  Restarter(const Restarter& other) : action(other.action) {
    if (const auto call = std::exchange(*action, nullptr)) call();
  }
  Restarter& operator=(const Restarter&) = default;
  void operator()(const Event& /*event*/) const {}
  friend std::ostream& operator<<(std::ostream& os, const Restarter& /*value*/) { return os; }
  std::function<void()>* action;
};

TEST_F(Lifecycle, CallOfAnEarlierStartDoesNotActInTheNext) {
  bundle.Start();
  BundleContext own = bundle.GetBundleContext();
  std::function<void()> onCopy;
  const ServiceProperties properties{{"p", Any(Restarter<ServiceEvent>(onCopy))}};
  const ServiceListener serviceListener = Restarter<ServiceEvent>(onCopy);
  const BundleListener bundleListener = Restarter<BundleEvent>(onCopy);
  const auto restart = [&] {
    bundle.Stop();
    bundle.Start();
  };
  const std::vector<std::function<void()>> calls = {
      [&] { (void)own.RegisterService<Greeter>(std::make_shared<Hello>(), properties); },
      [&] { own.AddServiceListener(serviceListener); },
      [&] { own.AddBundleListener(bundleListener); },
  };
  for (const auto& call : calls) {
    own = bundle.GetBundleContext();
    onCopy = restart;
    EXPECT_EQ(textOf(call), "The bundle context is no longer valid");
    EXPECT_TRUE(bundle.GetBundleContext());
  }
  EXPECT_TRUE(bundle.GetRegisteredServices().empty());
}

TEST_F(Lifecycle, BundlesAreOrderedAndHashed) {
  const std::unordered_set<Bundle> bundles{framework, bundle, bundle};
  EXPECT_EQ(bundles.size(), 2U);
  EXPECT_TRUE(framework < bundle);
  EXPECT_FALSE(bundle < framework);
  EXPECT_TRUE(bundle < Bundle());
  EXPECT_FALSE(Bundle() < bundle);
  EXPECT_FALSE(Bundle() < Bundle());
  EXPECT_TRUE(Bundle() == Bundle());
}

TEST_F(Lifecycle, MissingBundlesAndExceptionsArePrinted) {
  std::ostringstream text;
  text << Bundle() << ", " << static_cast<const Bundle*>(nullptr) << "; "
       << FrameworkEvent(FrameworkEvent::FRAMEWORK_INFO, Bundle(), "note");
  EXPECT_EQ(text.str(),
            "Bundle[invalid], Bundle[invalid]; INFO\n note\n Bundle[invalid]\n Exception: NONE");
}

TEST_F(Lifecycle, EventsDescribeWhatHappened) {
  const BundleEvent installed(BundleEvent::BUNDLE_INSTALLED, bundle, framework);
  EXPECT_TRUE(installed);
  EXPECT_EQ(installed.GetType(), BundleEvent::BUNDLE_INSTALLED);
  EXPECT_TRUE(installed.GetBundle() == bundle);
  EXPECT_TRUE(installed.GetOrigin() == framework);
  EXPECT_FALSE(installed == BundleEvent(BundleEvent::BUNDLE_INSTALLED, bundle));
  EXPECT_FALSE(BundleEvent());
  EXPECT_TRUE(BundleEvent() == BundleEvent());
  const FrameworkEvent warning(FrameworkEvent::FRAMEWORK_WARNING, bundle, "text");
  EXPECT_TRUE(warning);
  EXPECT_EQ(warning.GetMessage(), "text");
  EXPECT_EQ(warning.GetThrowable(), nullptr);
  EXPECT_TRUE(warning.GetBundle() == bundle);
  EXPECT_FALSE(warning == FrameworkEvent());
  EXPECT_FALSE(FrameworkEvent());
  EXPECT_FALSE(ServiceEvent());
  EXPECT_FALSE(ServiceEvent().GetServiceReference());
}

}  // namespace
}  // namespace embedded_framework
