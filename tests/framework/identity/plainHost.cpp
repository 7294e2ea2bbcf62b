// plainHost RUNTIME BUNDLE: a host that only starts the Declarative Services runtime and a bundle,
// and gets the services of the bundle. Its status is 2, with the message on standard error, when
// one is refused.

#include <chrono>
#include <cstdio>
#include <exception>
#include <thread>

#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/ServiceReference.h"

namespace {

// A runtime may register the services of components on its own threads.
void awaitServices(const cppmicroservices::Bundle& bundle) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (bundle.GetHeaders().count("scr") != 0 && bundle.GetRegisteredServices().empty() &&
         std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void use(cppmicroservices::BundleContext context, const char* file) {
  for (cppmicroservices::Bundle& bundle : context.InstallBundles(file)) {
    bundle.Start();
    awaitServices(bundle);
    for (const auto& service : bundle.GetRegisteredServices()) context.GetService(service);
  }
}

int run(const char* runtime, const char* file) {
  cppmicroservices::Framework framework = cppmicroservices::FrameworkFactory().NewFramework();
  framework.Start();
  int status = 0;
  try {
    use(framework.GetBundleContext(), runtime);
    use(framework.GetBundleContext(), file);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    status = 2;
  }
  framework.Stop();
  framework.WaitForStop(std::chrono::milliseconds::zero());
  return status;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  return argumentCount == 3 ? run(arguments[1], arguments[2]) : 1;
}
