#include <memory>
#include <stdexcept>

#include <cppmicroservices/BundleInitialization.h>

#include "parts.hpp"
#include "quenlith/bundle/component.hpp"

// The library of all broken bundles: the fault is in the manifest or in one factory.

CPPMICROSERVICES_INITIALIZE_BUNDLE

namespace demo {

class Fine : public Broken {};

class ThrowsError : public Broken {
 public:
  ThrowsError() { throw std::runtime_error("no luck"); }
};

namespace {

class ThrowsNumber : public Broken {
 public:
  ThrowsNumber() { throw 7; }
};

}  // namespace

class Needs : public Broken {
 public:
  explicit Needs(const std::shared_ptr<Word>&) {}
};

class Both : public Broken, public NeedsBroken {};

}  // namespace demo

QUENLITH_COMPONENT(demo_Fine, demo::Fine, Provides<demo::Broken>);
QUENLITH_COMPONENT(demo_Both, demo::Both, Provides<demo::Broken, demo::NeedsBroken>);
QUENLITH_COMPONENT(demo_ThrowsError, demo::ThrowsError, Provides<demo::Broken>);
QUENLITH_COMPONENT(demo_ThrowsNumber, demo::ThrowsNumber, Provides<demo::Broken>);
QUENLITH_COMPONENT(demo_Needs, demo::Needs, Provides<demo::Broken>, Reference<"word", demo::Word>);

using cppmicroservices::service::component::detail::ComponentInstance;

// A factory that returns null, as when memory runs out.
extern "C" QUENLITH_BUNDLE_EXPORT ComponentInstance* NewInstance_demo_Null() {
  return nullptr;
}
extern "C" QUENLITH_BUNDLE_EXPORT void DeleteInstance_demo_Null(ComponentInstance* instance) {
  delete instance;
}

// A factory that lets an exception escape, which none may do.
extern "C" QUENLITH_BUNDLE_EXPORT ComponentInstance* NewInstance_demo_Thrower() {
  throw std::runtime_error("out of the factory");
}
extern "C" QUENLITH_BUNDLE_EXPORT void DeleteInstance_demo_Thrower(ComponentInstance* instance) {
  delete instance;
}

// A component without its DeleteInstance_ function.
extern "C" QUENLITH_BUNDLE_EXPORT ComponentInstance* NewInstance_demo_Half() {
  return nullptr;
}
