#pragma once

#include <string>
#include <vector>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices::detail {

/// The text of one bundle's manifest, and its path in the archive.
struct ManifestText {
  std::string path;
  std::string text;
};

/// A check of the headers of a bundle, whose library is the file `location`. Throws
/// `std::runtime_error` when the bundle must not be installed.
using ManifestCheck = void (*)(const AnyMap& headers, const std::string& location);

/// Throws a `std::runtime_error` that names the file, what is wrong with it and the remedy.
[[noreturn]] void refuseBundle(const std::string& location, const std::string& problem,
                               const std::string& remedy);

/// Returns the manifests, one at least, by ascending path, in the zip archive at the end of the
/// library at `location`; its offsets may be relative to the archive or to the file. Refuses the
/// file when there are none.
std::vector<ManifestText> readManifestTexts(const std::string& location);

/// Returns a manifest as headers: integers as `int`, other numbers and those that are too large
/// as `double`, lists as `std::vector<Any>`, objects as `AnyMap`. Refuses the file when the text
/// is not a JSON object, when keys of one object are equal or differ in case only, or when a header
/// that the framework reads is malformed.
AnyMap parseManifest(const std::string& location, const ManifestText& manifest);

}  // namespace cppmicroservices::detail
