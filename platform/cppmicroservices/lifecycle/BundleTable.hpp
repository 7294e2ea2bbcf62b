#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "lifecycle/LibraryBundle.hpp"

namespace cppmicroservices::detail {

/// Bundles, found by their id, by their library, and by their name and version.
class BundleTable {
 public:
  using Entry = std::shared_ptr<LibraryBundle>;

  /// Adds `bundle`, which must have no twin here. When it throws, the table must not be used.
  void add(const Entry& bundle);

  /// Moves all bundles of `other` here. There must be no twins among them.
  void takeAllOf(BundleTable& other) noexcept;

  /// Removes `bundle`, if it is there.
  void remove(const BundlePrivate& bundle) noexcept;

  /// Returns the bundle with that id, null when there is none.
  Entry find(long id) const;

  /// Returns the bundle with the highest id up to `id`, null when there is none.
  Entry findLast(long id) const;

  /// Returns the bundle with the name and version of `bundle`, null when there is none.
  Entry findTwin(const LibraryBundle& bundle) const;

  /// Returns all bundles, or those of a library, by ascending id.
  std::vector<Entry> all() const;
  std::vector<Entry> at(const std::string& location) const;

 private:
  // Both also compare with what to look for.
  struct LocationLess {
    using is_transparent = void;
    bool operator()(const Entry& left, const Entry& right) const;
    bool operator()(const Entry& left, const std::string& location) const;
  };
  struct IdentityLess {
    using is_transparent = void;
    bool operator()(const Entry& left, const Entry& right) const;
    bool operator()(const Entry& left, const LibraryBundle& right) const;
    bool operator()(const LibraryBundle& left, const Entry& right) const;
  };

  std::map<long, Entry> byId;
  std::set<Entry, LocationLess> byLocation;
  std::set<Entry, IdentityLess> byIdentity;
};

}  // namespace cppmicroservices::detail
