#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "cppmicroservices/servicecomponent/detail/ComponentInstance.hpp"

namespace cppmicroservices::service::component::detail {

/// The type in which generated factories list bind methods, which this framework does not have.
template <class Implementation>
class Binder;

/// Says whether a class has methods that a runtime calls at changes of the component's state.
template <class Implementation>
concept HasLifecycleMethods = requires {
  &Implementation::Activate;
}
|| requires {
  &Implementation::Deactivate;
}
|| requires {
  &Implementation::Modified;
};

/// See `ComponentInstance`. `References` are the `std::shared_ptr`s that the constructor of
/// `Implementation` takes.
template <class Implementation, class Provided, class... References>
class ComponentInstanceImpl;

template <class Implementation, class... Interfaces, class... References>
class ComponentInstanceImpl<Implementation, std::tuple<Interfaces...>, References...> final
    : public ComponentInstance {
  static_assert(!HasLifecycleMethods<Implementation>,
                "the embedded framework does not call Activate, Deactivate or Modified; an "
                "installed CppMicroServices does");

 public:
  /// Takes the names of the references in the order of the constructor's parameters.
  explicit ComponentInstanceImpl(std::array<std::string, sizeof...(References)> referenceNames = {},
                                 const std::vector<std::shared_ptr<Binder<Implementation>>>& = {})
      : names(std::move(referenceNames)) {}

  void CreateInstance(const std::shared_ptr<ComponentContext>& context) override {
    implementation = create(*context, std::index_sequence_for<References...>());
  }

  void Deactivate() override { implementation.reset(); }

  InterfaceMapPtr GetInterfaceMap() override {
    return MakeInterfaceMap<Interfaces...>(implementation);
  }

 private:
  template <std::size_t... index>
  std::shared_ptr<Implementation> create([[maybe_unused]] const ComponentContext& context,
                                         std::index_sequence<index...>) const {
    // Braces fetch the services in order, which the arguments of a call would not.
    std::tuple<References...> services{
        context.LocateService<typename References::element_type>(names[index])...};
    return std::make_shared<Implementation>(std::move(std::get<index>(services))...);
  }

  std::array<std::string, sizeof...(References)> names;
  std::shared_ptr<Implementation> implementation;
};

}  // namespace cppmicroservices::service::component::detail
