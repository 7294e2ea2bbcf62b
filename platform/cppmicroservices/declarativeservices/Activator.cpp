#include <memory>

#include <cppmicroservices/BundleActivator.h>

#include "Runtime.hpp"

namespace cppmicroservices::declarativeservices {

class Activator : public BundleActivator {
 public:
  void Start(BundleContext context) override {
    runtime = std::make_shared<Runtime>(context);
    try {
      runtime->start();
    } catch (...) {
      runtime->stop();
      throw;
    }
  }

  void Stop(BundleContext) override { runtime->stop(); }

 private:
  std::shared_ptr<Runtime> runtime;
};

}  // namespace cppmicroservices::declarativeservices

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(cppmicroservices::declarativeservices::Activator)
