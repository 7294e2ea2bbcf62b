#pragma once

#include <string>
#include <string_view>

namespace quenlith::elf {

/// The framework that a library is part of: none, the embedded one or an installed
/// CppMicroServices.
enum class Framework { kNone, kEmbedded, kInstalled };

/// The name of a shared library in its parts: "libquenlith_model.so.0.1" has the stem
/// "libquenlith_model" and the version "0.1", which may be empty.
struct LibraryName {
  explicit LibraryName(std::string_view name);

  /// Returns which framework it is a library of.
  Framework framework() const;
  /// Returns whether it is a library of this project, the embedded framework among them.
  bool isOurs() const;

  std::string name;
  std::string stem;
  std::string version;
};

}  // namespace quenlith::elf
