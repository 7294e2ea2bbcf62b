#pragma once

#include <cstddef>
#include <list>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace quenlith::shared::appendix {

/// An implementation of AppendixBuilder that keeps the entries in memory and that any host can
/// register.
///
/// The host replaces the entries before it parses the next snippet. Not thread-safe: the entries
/// must not change while a parser looks one up.
class QUENLITH_APPENDIX_EXPORT MarkerAppendix final : public AppendixBuilder {
 public:
  MarkerAppendix() = default;
  MarkerAppendix(const MarkerAppendix&) = delete;
  MarkerAppendix& operator=(const MarkerAppendix&) = delete;

  /// Like the base class; constant time on average. If it throws, the appendix is unchanged.
  void addEntry(const quenlith::syntax::Marker& entry) override;

  /// Returns the appendix in canonical form: the line that starts it, then one line per entry in
  /// the order in which they were added, each ending in LF. Empty when there are no entries.
  fl::i18n::ustring build() const override;

  /// Like the base class; constant time on average. The text is the entry's canonical form; the
  /// marker shares the data of the one added.
  AppendixEntry findEntry(const quenlith::syntax::Marker& marker) const override;

  /// Replaces all entries by `markers`, as if by `addEntry`. If it throws, the appendix is
  /// unchanged.
  void replace(const std::vector<quenlith::syntax::Marker>& markers);

 private:
  /// Element and id, borrowed from the marker of an entry.
  using Key = std::pair<std::u16string_view, std::u16string_view>;
  /// Keyed: ids come from files, and a file can be crafted so that other hashes of them collide.
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };

  static Key keyOf(const quenlith::syntax::Marker& marker) noexcept;

  std::list<AppendixEntry> entries;
  std::unordered_map<Key, const AppendixEntry*, KeyHash> entriesByKey;
};

}  // namespace quenlith::shared::appendix
