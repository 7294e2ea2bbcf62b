#pragma once

#include <string>
#include <vector>

#include "tessera/diagnostics/Problem.hpp"

namespace tessera::doctor {

/// A shared library of the program.
struct Library {
  std::string name;
  std::string version;
  std::string file;
};

/// A reference of a component for which there is no service.
struct Wait {
  std::string reference;
  std::string interfaceId;
  /// The component that would provide it, but waits itself; empty without one.
  std::string provider;
};

struct Component {
  std::string name;
  /// "ready", "waiting", "failed" or "unknown", when its bundle was not started.
  std::string state;
  std::vector<std::string> interfaceIds;
  std::vector<Wait> waits;
};

struct Bundle {
  /// Empty if the manifest could not be read, like the version if it has none.
  std::string name;
  std::string version;
  /// "active", "installed" or "refused".
  std::string state;
  /// "runtime", "parsers", "pieces" or "extension".
  std::string role;
  std::string file;
  std::vector<Component> components;
};

struct Service {
  std::vector<std::string> interfaceIds;
  int ranking = 0;
  /// Empty for a service that is not that of a component.
  std::string component;
  /// The symbolic name of its bundle; "system_bundle" for services of the program itself.
  std::string bundle;
  std::string testId;
  bool isDefault = false;
};

/// What the program is made of, what it would run, and what is wrong with it.
struct Diagnosis {
  Library program;
  /// "embedded" or "installed".
  std::string frameworkKind;
  Library framework;
  std::vector<Library> libraries;
  /// In the order in which they are started.
  std::vector<Bundle> bundles;
  /// In service order: the highest ranking first, then the one that was registered first.
  std::vector<Service> services;
  std::vector<diagnostics::Problem> problems;
};

}  // namespace tessera::doctor
