#include "tessera/check/HeldFiles.hpp"

#include <algorithm>
#include <utility>

#include "tessera/check/catalogue/Catalogue.hpp"
#include "tessera/check/scan/markerText.hpp"

namespace tessera::check {

using catalogue::CheckedFile;
using catalogue::Diagnostic;

namespace {

// Enough to tell whether exactly one other file has a marker of the id.
constexpr std::size_t kMaxPlaces = 3;

}  // namespace

void HeldFiles::add(CheckedFile file) {
  bool isUnpaired = false;
  for (const Diagnostic& diagnostic : file.diagnostics) {
    if (!diagnostic.unpairedTask) continue;
    isUnpaired = true;
    std::vector<Place>& known = places[*diagnostic.unpairedTask];
    if (known.size() < kMaxPlaces) known.push_back({held.size(), diagnostic.span});
  }
  if (held.empty() && !isUnpaired) return take(file);
  // Only the lines with diagnostics are needed.
  if (file.diagnostics.empty()) file.lines = {};
  held.push_back(std::move(file));
}

void HeldFiles::finish() {
  for (std::size_t i = 0; i < held.size(); ++i) explainUnpaired(i);
  for (const CheckedFile& file : held) take(file);
  held.clear();
}

void HeldFiles::explainUnpaired(std::size_t index) {
  for (Diagnostic& diagnostic : held[index].diagnostics) {
    if (!diagnostic.unpairedTask) continue;
    const auto& known = places.at(*diagnostic.unpairedTask);
    const auto isOther = [index](const Place& place) { return place.file != index; };
    // Of several others, none is the partner.
    if (std::ranges::count_if(known, isOther) != 1) continue;
    const auto other = std::ranges::find_if(known, isOther);
    const std::string id =
        diagnostic.unpairedTask->empty() ? "without an id" : scan::quoted(*diagnostic.unpairedTask);
    diagnostic.message =
        catalogue::messageOf(diagnostic.kind, catalogue::forms::kPairInOtherFile, {id});
    diagnostic.notes.push_back(
        {other->span, "the other task marker with this id", &held[other->file]});
  }
}

}  // namespace tessera::check
