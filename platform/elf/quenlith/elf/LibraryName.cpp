#include "quenlith/elf/LibraryName.hpp"

#include <algorithm>
#include <cstddef>

namespace quenlith::elf {
namespace {

constexpr std::string_view kSuffix = ".so";
constexpr std::string_view kOurPrefix = "libquenlith_";
constexpr std::string_view kEmbedded = "libquenlith_cppmicroservices";
// A bundle whose components need no other function of the framework is linked with the second only.
constexpr std::string_view kInstalled[] = {"libCppMicroServices", "libusServiceComponent"};

}  // namespace

LibraryName::LibraryName(std::string_view name)
    : name(name), stem(name.substr(0, name.find(kSuffix))) {
  const std::size_t end = stem.size() + kSuffix.size() + 1;
  version = name.substr(std::min(end, name.size()));
}

Framework LibraryName::framework() const {
  if (stem == kEmbedded) return Framework::kEmbedded;
  const bool isInstalled = std::ranges::any_of(kInstalled, [this](std::string_view name) {
    // A debug build has a letter more.
    return stem == name || stem == std::string(name) + 'd';
  });
  return isInstalled ? Framework::kInstalled : Framework::kNone;
}

bool LibraryName::isOurs() const {
  return stem.starts_with(kOurPrefix);
}

}  // namespace quenlith::elf
