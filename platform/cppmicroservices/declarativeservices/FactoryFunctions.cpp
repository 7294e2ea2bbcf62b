#include "FactoryFunctions.hpp"

#include <dlfcn.h>

#include <memory>

#include <cppmicroservices/servicecomponent/ComponentException.hpp>

namespace cppmicroservices::declarativeservices {

namespace {

// The qualified name of a class as part of a C name.
std::string asSymbol(const std::string& name) {
  std::string symbol = name;
  for (auto at = symbol.find("::"); at != std::string::npos; at = symbol.find("::", at)) {
    symbol.replace(at, 2, "_");
  }
  return symbol;
}

struct Close {
  void operator()(void* library) const { dlclose(library); }
};

}  // namespace

FactoryFunctions FactoryFunctions::find(const Bundle& bundle, const std::string& name) {
  const std::string location = bundle.GetLocation();
  // The framework has loaded the library and never unloads it: this only returns its handle.
  const std::unique_ptr<void, Close> library(dlopen(location.c_str(), RTLD_LAZY | RTLD_LOCAL));
  const auto symbol = [&](const std::string& prefix) {
    const std::string function = prefix + asSymbol(name);
    void* const address = library ? dlsym(library.get(), function.c_str()) : nullptr;
    if (address == nullptr) {
      throw service::component::ComponentException(
          location + ": component " + name + ": the library exports no function " + function +
          "; add QUENLITH_COMPONENT(" + asSymbol(name) + ", ...) to a source of the bundle");
    }
    return address;
  };
  return {reinterpret_cast<Instance* (*)()>(symbol("NewInstance_")),
          reinterpret_cast<void (*)(Instance*)>(symbol("DeleteInstance_"))};
}

}  // namespace cppmicroservices::declarativeservices
