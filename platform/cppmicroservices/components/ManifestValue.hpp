#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices::detail {

/// Stands for one value of a manifest together with its place, for messages. Borrows the value.
///
/// Where a value is not as asked for, a `std::runtime_error` names the file, the place and the
/// remedy.
class ManifestValue {
 public:
  /// Takes the file of the manifest and the keys that lead to the value.
  ManifestValue(const Any& any, std::string file, std::string keys);

  /// Returns the same value, but in messages `name` stands behind its place.
  ManifestValue called(const std::string& name) const;

  /// Returns the value of `key` of an object, which must be there.
  ManifestValue at(const std::string& key) const;
  /// Says whether the object has that key.
  bool has(const std::string& key) const;
  /// Returns the values of a list that has one at least.
  std::vector<ManifestValue> elements() const;
  /// Returns the entries of an object.
  const AnyMap& object() const;
  /// Returns a text that is not empty.
  const std::string& text() const;
  bool isTrue() const;

  const Any& any() const { return *value; }
  /// Refuses every key of an object but those.
  void allowKeys(std::initializer_list<std::string_view> keys) const;

  [[noreturn]] void fail(const std::string& problem) const;
  /// Fails for something that only the original framework has; `instead` is what to do here.
  [[noreturn]] void refuse(const std::string& feature,
                           const std::string& instead = "leave it out") const;

 private:
  template <class T>
  const T& as(const char* kind) const;

  const Any* value;
  std::string location;
  std::string path;
};

}  // namespace cppmicroservices::detail
