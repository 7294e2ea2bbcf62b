// Measures how long a lookup in the running framework takes: `quenlith_bench_lookup`.

#include <benchmark/benchmark.h>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/cppmicroservices/getFramework.hpp"
#include "quenlith/build/markup/contributordata/LineContributorDataParser.hpp"

namespace {

using cppmicroservices::Framework;
using cppmicroservices::LDAPFilter;
using cppmicroservices::ServiceReference;
using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::setFramework;
using quenlith::build::markup::contributordata::LineContributorDataParser;

class OtherService {};

/// A started framework, the running one of the process, with `serviceCount` services of another
/// interface.
class RunningFramework {
 public:
  explicit RunningFramework(int serviceCount) {
    framework->Start();
    for (int i = 0; i < serviceCount; ++i) {
      (void)framework->GetBundleContext().RegisterService<OtherService>(
          std::make_shared<OtherService>());
    }
    setFramework(framework);
  }
  RunningFramework(const RunningFramework&) = delete;
  RunningFramework& operator=(const RunningFramework&) = delete;
  ~RunningFramework() {
    setFramework(nullptr);
    framework->Stop();
  }

 private:
  std::shared_ptr<Framework> framework =
      std::make_shared<Framework>(cppmicroservices::FrameworkFactory().NewFramework());
};

/// The lookup of contributors that the parser services provider does for every line while none is
/// registered. The argument is the number of services of another interface. The embedded
/// framework aims at 20 ns in a process of one thread.
void lookUpNoContributor(benchmark::State& state) {
  const RunningFramework running(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const auto framework = getFramework();
    auto context = framework->GetBundleContext();
    const auto found =
        context.GetServiceReferences<LineContributorDataParser>(LDAPFilter().ToString());
    if (!found.empty()) state.SkipWithError("found a service that nobody has registered");
    benchmark::DoNotOptimize(found.data());
  }
}
BENCHMARK(lookUpNoContributor)->Arg(0)->Arg(4)->Arg(1000);

void getRunningFramework(benchmark::State& state) {
  const RunningFramework running(0);
  for (auto _ : state) {
    const auto framework = getFramework();
    if (framework == nullptr) state.SkipWithError("no framework runs");
    benchmark::DoNotOptimize(framework.get());
  }
}
BENCHMARK(getRunningFramework);

}  // namespace

BENCHMARK_MAIN();
