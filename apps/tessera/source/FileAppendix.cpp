#include "tessera/source/FileAppendix.hpp"

namespace tessera::source {
namespace {

using quenlith::syntax::Marker;

/// Element and id in one text; an element never holds the unit between them.
fl::i18n::ustring keyOf(const Marker& marker) {
  fl::i18n::ustring key(marker.elementView());
  key += u'#';
  return key += marker.idView();
}

}  // namespace

void FileAppendix::addEntry(const Marker& entry) {
  if (places.emplace(keyOf(entry), entries.size()).second) entries.push_back(entry);
}

fl::i18n::ustring FileAppendix::build() const {
  if (entries.empty()) return {};
  fl::i18n::ustring text = u"%<@appendix>\n";
  for (const Marker& entry : entries) text += entry.toString() + u'\n';
  return text;
}

quenlith::shared::appendix::AppendixEntry FileAppendix::findEntry(const Marker& marker) const {
  const auto place = places.find(keyOf(marker));
  if (place == places.end()) return {};
  const Marker& entry = entries[place->second];
  return {entry.toString(), entry};
}

void FileAppendix::replace(const std::vector<Marker>& newEntries) {
  entries.clear();
  places.clear();
  for (const Marker& entry : newEntries) addEntry(entry);
}

}  // namespace tessera::source
