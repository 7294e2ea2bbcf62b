#include <cppmicroservices/ServiceEvent.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "framework/broken/BundleFile.hpp"
#include "platform/cppmicroservices/HostFramework.hpp"
#include "support/CountedWork.hpp"

namespace embedded_framework {
namespace {

using namespace cppmicroservices;
using quenlith::test::countedWork;

constexpr std::size_t kFew = 100;
constexpr std::size_t kMany = 10 * kFew;

/// Returns the basic blocks that `act(n)` runs.
template <class Action>
std::uint64_t workOf(const Action& act, std::size_t n) {
  const std::uint64_t before = countedWork();
  act(n);
  return countedWork() - before;
}

/// Ten times as much costs at most `ratio` times as much: ten times, and a little for deeper search
/// trees.
template <class Action>
void expectLinear(const Action& act, std::uint64_t ratio = 13) {
  act(1);
  const std::uint64_t few = workOf(act, kFew);
  ASSERT_GT(few, kFew);
  EXPECT_LT(workOf(act, kMany), ratio * few);
}

std::string manifestOf(std::size_t number) {
  return R"({"bundle.symbolic_name":"b)" + std::to_string(number) + "\"}";
}

class Cost : public HostFramework {
 protected:
  Cost() { std::filesystem::create_directories(WORK_FOLDER); }

  // Makes a library that is `count` bundles; returns its path.
  static std::string makeLibrary(std::size_t count) {
    std::string path = WORK_FOLDER;
    path.append("/cost").append(std::to_string(count)).append(".so");
    std::vector<std::pair<std::string, std::string>> manifests;
    for (std::size_t number = 0; number < count; ++number) {
      manifests.emplace_back("b" + std::to_string(number) + "/manifest.json", manifestOf(number));
    }
    const std::string library = readBytes(BARE_LIBRARY);
    std::filesystem::remove(path);
    writeBytes(path, library + makeArchive(manifests, library.size()));
    return path;
  }

  std::vector<ServiceRegistration<Greeter>> registerMany(BundleContext owner, std::size_t count) {
    std::vector<ServiceRegistration<Greeter>> registrations;
    for (std::size_t number = 0; number < count; ++number) {
      registrations.push_back(owner.RegisterService<Greeter>(std::make_shared<Hello>()));
    }
    return registrations;
  }

  void restart() {
    stop();
    start();
  }
};

TEST_F(Cost, OfTheBundlesOfALibraryIsLinear) {
  for (const std::size_t count : {std::size_t{1}, kFew, kMany}) makeLibrary(count);
  expectLinear([this](std::size_t n) {
    context.InstallBundles(std::string(WORK_FOLDER) + "/cost" + std::to_string(n) + ".so");
    restart();
  });
}

TEST_F(Cost, OfLibrariesIsLinear) {
  std::vector<std::string> paths;
  for (std::size_t number = 0; number < kMany; ++number) {
    std::string path = WORK_FOLDER;
    path.append("/single").append(std::to_string(number)).append(".so");
    writeBytes(path, makeArchive({{"b/manifest.json", manifestOf(number)}}, 0));
    paths.push_back(std::move(path));
  }
  expectLinear([&](std::size_t n) {
    for (std::size_t number = 0; number < n; ++number) {
      context.InstallBundles(paths[number]);
      context.GetBundles(paths[number]);
    }
    restart();
  });
  for (const std::string& path : paths) std::filesystem::remove(path);
}

TEST_F(Cost, OfBundlesThatStopIsLinear) {
  for (const std::size_t count : {std::size_t{1}, kFew, kMany}) makeLibrary(count);
  expectLinear([this](std::size_t n) {
    const auto others = registerMany(context, n);
    const auto reference = others.front().GetReference();
    std::vector<std::shared_ptr<Greeter>> used;
    for (Bundle bundle :
         context.InstallBundles(std::string(WORK_FOLDER) + "/cost" + std::to_string(n) + ".so")) {
      bundle.Start();
      BundleContext own = bundle.GetBundleContext();
      (void)own.RegisterService<Counter>(std::make_shared<Counter>());
      used.push_back(own.GetService(reference));
      ASSERT_EQ(bundle.GetRegisteredServices().size(), 1U);
      ASSERT_EQ(bundle.GetServicesInUse().size(), 1U);
    }
    restart();
  });
}

TEST_F(Cost, OfServicesIsLinear) {
  expectLinear([this](std::size_t n) {
    for (auto& registration : registerMany(context, n)) {
      registration.SetProperties({{"a", Any(1)}});
      registration.Unregister();
    }
  });
}

TEST_F(Cost, OfListenersIsLinear) {
  const auto addAndRemove = [this](std::size_t n) {
    std::vector<ListenerToken> tokens;
    for (std::size_t number = 0; number < n; ++number) {
      tokens.push_back(context.AddServiceListener([](const ServiceEvent&) {}));
    }
    for (ListenerToken& token : tokens) context.RemoveListener(std::move(token));
  };
  // Nearly all of the work is in the search trees.
  expectLinear(addAndRemove, 14);
}

}  // namespace
}  // namespace embedded_framework
