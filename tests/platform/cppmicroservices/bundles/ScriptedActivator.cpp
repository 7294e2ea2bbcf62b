#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/GetBundleContext.h>

#include "platform/cppmicroservices/Script.hpp"

namespace embedded_framework {

class ScriptedActivator : public cppmicroservices::BundleActivator {
 public:
  ScriptedActivator() {
    const auto given = script(cppmicroservices::GetBundleContext());
    given->contextOfBundle = [] { return cppmicroservices::GetBundleContext(); };
    given->storedContext = US_GET_CTX_FUNC(US_BUNDLE_NAME);
    given->make();
  }
  void Start(cppmicroservices::BundleContext context) override { script(context)->start(context); }
  void Stop(cppmicroservices::BundleContext context) override { script(context)->stop(context); }

 private:
  static std::shared_ptr<Script> script(cppmicroservices::BundleContext context) {
    return context.GetService(context.GetServiceReference<Script>());
  }
};

}  // namespace embedded_framework

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(embedded_framework::ScriptedActivator)
