#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices::detail {

/// One value of a manifest together with its path, for messages. Borrows the value.
///
/// Every operation throws `std::runtime_error` when the value is not as required: its text names
/// the file, the path and the remedy.
class ManifestValue {
 public:
  /// Takes the file of the manifest and the keys that lead to the value.
  ManifestValue(const Any& any, std::string file, std::string keys);

  /// Returns the same value with `name` after its path in messages.
  ManifestValue called(const std::string& name) const;

  /// Returns the value of `key` of an object, which must be there.
  ManifestValue at(const std::string& key) const;
  /// Says whether the object has that key.
  bool has(const std::string& key) const;
  /// Returns the values of a list, which must not be empty.
  std::vector<ManifestValue> elements() const;
  /// Returns the entries of an object.
  const AnyMap& object() const;
  /// Returns a text, which must not be empty.
  const std::string& text() const;
  bool isTrue() const;

  const Any& any() const { return *value; }
  /// Throws when the object has a key that is not in `keys`.
  void allowKeys(std::initializer_list<std::string_view> keys) const;

  [[noreturn]] void fail(const std::string& problem) const;
  /// Throws for a feature that only an installed framework has; `instead` is the remedy here.
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
