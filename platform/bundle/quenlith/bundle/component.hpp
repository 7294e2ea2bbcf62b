#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>

#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/servicecomponent/detail/ComponentInstanceImpl.hpp>

#if defined(_WIN32)
#define QUENLITH_BUNDLE_EXPORT __declspec(dllexport)
#else
#define QUENLITH_BUNDLE_EXPORT __attribute__((visibility("default")))
#endif

namespace quenlith::bundle {

/// Lists the interfaces that a component provides: its "interfaces" in the manifest.
template <class... Interfaces>
struct Provides {};

/// The name of a reference as a template argument.
template <std::size_t size>
struct ReferenceName {
  // Implicit, so that a string literal can be used as the template argument.
  consteval ReferenceName(const char (&name)[size]) { std::copy_n(name, size, characters); }

  char characters[size];
};

/// Names one reference of a component: its "name" and "interface" in the manifest.
template <ReferenceName name, class Interface>
struct Reference {};

/// Creates the instance object of a component; see `QUENLITH_COMPONENT`.
template <class Implementation, class Provided, class... References>
struct Factory;

template <class Implementation, class... Interfaces, ReferenceName... names, class... Referenced>
struct Factory<Implementation, Provides<Interfaces...>, Reference<names, Referenced>...> {
  static_assert(sizeof...(Interfaces) > 0, "a component must provide at least one interface");
  static_assert((std::is_base_of_v<Interfaces, Implementation> && ...),
                "the class of a component must derive from every interface that it provides");
  static_assert(
      std::is_constructible_v<Implementation, std::shared_ptr<Referenced>...>,
      "the class of a component must have a constructor that takes its references in order");

  using Instance = cppmicroservices::service::component::detail::ComponentInstanceImpl<
      Implementation, std::tuple<Interfaces...>, std::shared_ptr<Referenced>...>;

  /// Returns a new instance object, which the runtime owns and which has not created its
  /// `Implementation` yet; null when memory runs out.
  static cppmicroservices::service::component::detail::ComponentInstance* make() noexcept {
    try {
      const std::array<std::string, sizeof...(names)> referenceNames{
          std::string(names.characters)...};
      return new (std::nothrow) Instance(referenceNames);
    } catch (...) {
      return nullptr;
    }
  }
};

}  // namespace quenlith::bundle

/// Exports the two functions with which the runtime creates and destroys a component instance.
///
/// `symbol` is the "name" of the component in the manifest, by default the qualified name of the
/// class, with "_" for "::". The other arguments are the class, its interfaces, and its references
/// in the order of the manifest and of the constructor:
///
///     QUENLITH_COMPONENT(demo_Speaker, demo::Speaker, Provides<demo::Greeter>,
///                        Reference<"dictionary", demo::Dictionary>)
///
/// Use it outside all namespaces, once per component. `Provides` and `Reference` need no qualifier.
#define QUENLITH_COMPONENT(symbol, ...)                                                     \
  namespace quenlith::bundle {                                                              \
  extern "C" QUENLITH_BUNDLE_EXPORT                                                         \
      cppmicroservices::service::component::detail::ComponentInstance*                      \
          NewInstance_##symbol() noexcept;                                                  \
  extern "C" QUENLITH_BUNDLE_EXPORT void DeleteInstance_##symbol(                           \
      cppmicroservices::service::component::detail::ComponentInstance* instance) noexcept;  \
  cppmicroservices::service::component::detail::ComponentInstance*                          \
      NewInstance_##symbol() noexcept {                                                     \
    return Factory<__VA_ARGS__>::make();                                                    \
  }                                                                                         \
  void DeleteInstance_##symbol(                                                             \
      cppmicroservices::service::component::detail::ComponentInstance* instance) noexcept { \
    delete instance;                                                                        \
  }                                                                                         \
  }
