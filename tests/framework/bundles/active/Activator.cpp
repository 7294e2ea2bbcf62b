#include <memory>
#include <stdexcept>
#include <string>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/GetBundleContext.h>

#include "parts.hpp"

namespace demo {

class ActiveWord : public Word {
 public:
  std::string text() const override {
    return cppmicroservices::GetBundleContext().GetBundle().GetSymbolicName();
  }
};

// Refuses the start while a service demo::Broken is registered, the stop while demo::LeftA is.
class Activator : public cppmicroservices::BundleActivator {
 public:
  void Start(cppmicroservices::BundleContext context) override {
    if (context.GetServiceReference<Broken>()) {
      throw std::runtime_error("start refused");
    }
    context.RegisterService<Word>(std::make_shared<ActiveWord>(),
                                  {{"kind", std::string("active")}});
  }
  void Stop(cppmicroservices::BundleContext context) override {
    if (context.GetServiceReference<LeftA>()) {
      throw std::runtime_error("stop refused");
    }
  }
};

}  // namespace demo

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(demo::Activator)
