#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace tessera::source {

/// The host's appendix service: the entries of the file that is being parsed.
class FileAppendix final : public quenlith::shared::appendix::AppendixBuilder {
 public:
  using Marker = quenlith::syntax::Marker;

  void addEntry(const Marker& entry) override;

  /// Returns the appendix in canonical form: the line that starts it, then one entry a line;
  /// each line ends in LF. Empty when there is no entry.
  fl::i18n::ustring build() const override;

  /// Like the service's, at constant cost on average. The entry's text is its canonical one.
  quenlith::shared::appendix::AppendixEntry findEntry(const Marker& marker) const override;

  /// Makes `newEntries` the appendix.
  void replace(const std::vector<Marker>& newEntries);

 private:
  std::vector<Marker> entries;
  /// From element and id to the index of the entry.
  std::unordered_map<fl::i18n::ustring, std::size_t> places;
};

}  // namespace tessera::source
