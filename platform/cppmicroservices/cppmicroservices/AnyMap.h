#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "cppmicroservices/Any.h"

namespace cppmicroservices {

namespace detail {

/// Orders keys, with or without regard to the case of ASCII letters.
struct QUENLITH_CPPMICROSERVICES_EXPORT KeyLess {
  bool operator()(const std::string& left, const std::string& right) const;
  bool ignoresCase = false;
};

}  // namespace detail

/// Maps text to values of any type. Its `map_type` determines how keys are compared.
class QUENLITH_CPPMICROSERVICES_EXPORT any_map {
  using Entries = std::map<std::string, Any, detail::KeyLess>;

 public:
  using key_type = std::string;
  using mapped_type = Any;
  using value_type = std::pair<const key_type, mapped_type>;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using reference = value_type&;
  using const_reference = const value_type&;
  using pointer = value_type*;
  using const_pointer = const value_type*;
  using iterator = Entries::iterator;
  using const_iterator = Entries::const_iterator;

  using ordered_any_map = std::map<std::string, Any>;
  using unordered_any_map = std::unordered_map<std::string, Any>;

  enum map_type : std::uint8_t { ORDERED_MAP, UNORDERED_MAP, UNORDERED_MAP_CASEINSENSITIVE_KEYS };

  any_map(map_type mapType, std::initializer_list<value_type> list = {});
  any_map(const ordered_any_map& map);
  any_map(const unordered_any_map& map);

  iterator begin() { return entries.begin(); }
  const_iterator begin() const { return entries.begin(); }
  const_iterator cbegin() const { return entries.begin(); }
  iterator end() { return entries.end(); }
  const_iterator end() const { return entries.end(); }
  const_iterator cend() const { return entries.end(); }

  bool empty() const { return entries.empty(); }
  size_type size() const { return entries.size(); }
  size_type count(const key_type& key) const { return entries.count(key); }
  void clear() { entries.clear(); }

  /// Returns the value of `key`. Throws `std::out_of_range` when there is none.
  mapped_type& at(const key_type& key) { return entries.at(key); }
  const mapped_type& at(const key_type& key) const { return entries.at(key); }

  /// Returns the value of `key`; adds an empty one when there is none.
  mapped_type& operator[](const key_type& key) { return entries[key]; }

  /// Adds an entry unless the map has its key already. Says whether it did.
  std::pair<iterator, bool> insert(const value_type& value) { return entries.insert(value); }
  template <class... Args>
  std::pair<iterator, bool> emplace(Args&&... args) {
    return entries.emplace(std::forward<Args>(args)...);
  }

  const_iterator find(const key_type& key) const { return entries.find(key); }

  /// Removes the entry of `key` and returns the number of entries removed.
  size_type erase(const key_type& key) { return entries.erase(key); }

  /// Says whether both hold the same entries, whatever their types.
  bool operator==(const any_map& other) const;

 protected:
  map_type type;

 private:
  Entries entries;
};

/// An `any_map` in which a compound key finds values inside nested maps and lists.
class QUENLITH_CPPMICROSERVICES_EXPORT AnyMap : public any_map {
 public:
  using any_map::any_map;

  /// Makes a map whose keys are compared without regard to case.
  AnyMap(std::initializer_list<value_type> list = {})
      : any_map(UNORDERED_MAP_CASEINSENSITIVE_KEYS, list) {}

  map_type GetType() const { return type; }

  /// Returns the value at the path `key`: names of entries and 0-based indices of
  /// `std::vector<Any>`, separated by dots. Throws `std::invalid_argument` when an inner value is
  /// neither a map nor a list, `std::out_of_range` when there is no such entry.
  const mapped_type& AtCompoundKey(const key_type& key) const;

  /// Like the form with one argument, but returns `defaultValue` where that one throws.
  mapped_type AtCompoundKey(const key_type& key, mapped_type defaultValue) const noexcept;
};

/// Writes `{key : value, key : value}`.
QUENLITH_CPPMICROSERVICES_EXPORT std::ostream& any_value_to_string(std::ostream& os,
                                                                   const AnyMap& map);

}  // namespace cppmicroservices
