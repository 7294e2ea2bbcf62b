#include "quenlith/shared/appendix/MarkerAppendix.hpp"

#include "fl/i18n/KeyedHash.hpp"

namespace quenlith::shared::appendix {

using quenlith::syntax::Marker;

MarkerAppendix::Key MarkerAppendix::keyOf(const Marker& marker) noexcept {
  return {marker.elementView(), marker.idView()};
}

std::size_t MarkerAppendix::KeyHash::operator()(const Key& key) const {
  fl::i18n::KeyedHash hash(fl::i18n::KeyedHash::keyOfProcess());
  hash.add(key.first);
  hash.add(key.second);
  return static_cast<std::size_t>(hash.finish());
}

void MarkerAppendix::addEntry(const Marker& entry) {
  if (entriesByKey.contains(keyOf(entry))) return;
  // The entry joins `entries` last, so that nothing changes when `emplace` throws.
  std::list<AppendixEntry> added;
  added.push_back({entry.toString(), entry});
  entriesByKey.emplace(keyOf(*added.front().marker), &added.front());
  // Does not throw, and keeps the entry's address, which `entriesByKey` refers to.
  entries.splice(entries.end(), added);
}

fl::i18n::ustring MarkerAppendix::build() const {
  if (entries.empty()) return {};
  fl::i18n::ustring text = u"%<@appendix>\n";
  for (const AppendixEntry& entry : entries) text.append(entry.text).append(1, u'\n');
  return text;
}

AppendixEntry MarkerAppendix::findEntry(const Marker& marker) const {
  const auto found = entriesByKey.find(keyOf(marker));
  return found == entriesByKey.end() ? AppendixEntry() : *found->second;
}

void MarkerAppendix::replace(const std::vector<Marker>& markers) {
  MarkerAppendix replacement;
  for (const Marker& marker : markers) replacement.addEntry(marker);
  entries.swap(replacement.entries);
  entriesByKey.swap(replacement.entriesByKey);
}

}  // namespace quenlith::shared::appendix
