#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"

#include <cstring>
#include <utility>

#include "quenlith/build/markup/code/line/MarkerKind.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code::task {

using fl::i18n::ustring;
using line::MarkerKind;

namespace {

// At memory speed: 16-bit strings are otherwise compared unit by unit.
int compareBytes(const ustring& a, const ustring& b) noexcept {
  return std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t));
}

bool isSame(const ustring& a, const ustring& b) noexcept {
  return a.size() == b.size() && compareBytes(a, b) == 0;
}

}  // namespace

bool TaskIdCounts::Order::operator()(const ustring& a, const ustring& b) const noexcept {
  return a.size() != b.size() ? a.size() < b.size() : compareBytes(a, b) < 0;
}

std::size_t TaskIdCounts::count(const ustring& block, std::uint64_t version, const ustring& id) {
  if (version == 0 || version != scannedVersion) {
    if (!isSame(scannedBlock, block)) scan(block);
    scannedVersion = version;
  }
  const auto counted = counts.find(id);
  return counted == counts.end() ? 0 : counted->second;
}

void TaskIdCounts::scan(const ustring& block) {
  Counts found;
  for (const core::MarkerInfo& info : syntax::get_markers_from_snippet(block, false)) {
    if (line::kindOf(info.marker) == MarkerKind::kTask) ++found[info.marker.getId()];
  }
  ustring copy = block;
  scannedBlock.swap(copy);
  counts.swap(found);
}

void TaskIdCounts::clear() noexcept {
  // Swapped, because clear() would keep the memory, and a block may be large.
  ustring().swap(scannedBlock);
  scannedVersion = 0;
  counts.clear();
}

}  // namespace quenlith::build::markup::code::task
