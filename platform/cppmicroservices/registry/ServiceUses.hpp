#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace cppmicroservices::detail {

class ServiceRecord;

/// The services that a bundle uses. May be used from several threads, also under the lock of a
/// record: nothing else is locked under the lock of this class.
class ServiceUses {
 public:
  /// The entry for one use, which must be added before it is removed, and removed before it is
  /// destroyed.
  class Entry {
   public:
    explicit Entry(ServiceRecord& record) : node{&record}, place(node.begin()) {}

   private:
    friend class ServiceUses;
    std::list<ServiceRecord*> node;
    std::list<ServiceRecord*>::iterator place;
  };

  /// Adds and removes the entry of a record that lives longer. Allocate nothing.
  void add(Entry& entry) noexcept;
  void remove(Entry& entry) noexcept;

  /// Returns the service that is used longest, null when there is none.
  std::shared_ptr<ServiceRecord> first() const noexcept;

  /// Returns all, in the order in which the uses began.
  std::vector<std::shared_ptr<ServiceRecord>> all() const;

 private:
  mutable std::mutex mutex;
  std::list<ServiceRecord*> records;
};

}  // namespace cppmicroservices::detail
