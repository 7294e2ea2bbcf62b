#include "quenlith/build/markup/code/task/TaskIdCounts.hpp"

#include <cstring>

#include "quenlith/build/markup/code/line/MarkerKind.hpp"
#include "quenlith/syntax/markers.hpp"

namespace quenlith::build::markup::code::task {

using fl::i18n::ustring;

namespace {

// At memory speed: 16-bit strings are otherwise compared unit by unit.
bool isSame(const ustring& a, const ustring& b) noexcept {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

}  // namespace

std::size_t TaskIdCounts::count(const ustring& block, const ustring& id) {
  if (latest == nullptr || !isSame(latest->first, block)) {
    auto seen = blocks.find(block);
    if (seen == blocks.end()) seen = blocks.emplace(block, countIn(block)).first;
    latest = &*seen;
  }
  const auto counted = latest->second.find(id);
  return counted == latest->second.end() ? 0 : counted->second;
}

TaskIdCounts::Counts TaskIdCounts::countIn(const ustring& block) {
  Counts counts;
  for (const core::MarkerInfo& found : syntax::get_markers_from_snippet(block, false)) {
    if (line::isTask(found.marker)) ++counts[found.marker.getId()];
  }
  return counts;
}

void TaskIdCounts::clear() noexcept {
  latest = nullptr;
  blocks.clear();
}

}  // namespace quenlith::build::markup::code::task
