#pragma once

#include <string>
#include <vector>

#include "cppmicroservices/Bundle.h"
#include "tessera/host/Component.hpp"

namespace tessera::host {

/// What a bundle is for: the program's own ones and those that the user has named.
enum class BundleRole { kRuntime, kParsers, kPieces, kExtension };

/// A reference for which no service is registered, and none can be.
struct MissingService {
  Reference reference;
  /// The component that would provide it, but waits itself; empty without one.
  std::string provider;
  /// An interface with a similar name that somebody provides; empty without one.
  std::string similar;
};

/// A component of a started bundle, and what became of it.
struct ComponentState {
  Component component;
  bool isRegistered = false;
  /// Whether its constructor or its factory failed.
  bool hasFailed = false;
  std::vector<MissingService> missing = {};
};

/// A bundle that the program has started, or has failed to.
struct StartedBundle {
  /// As the user named it.
  std::string file;
  BundleRole role;
  /// Invalid if it could not be installed.
  cppmicroservices::Bundle bundle = {};
  std::vector<ComponentState> components = {};
  /// Whether something is wrong with it that has been reported.
  bool hasProblem = false;
};

}  // namespace tessera::host
