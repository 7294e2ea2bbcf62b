#include "oracle/task/TaskRow.hpp"

#include <array>

namespace quenlith::oracle {

namespace {

struct RowName {
  const char* name;
  std::size_t least;
};

constexpr std::size_t kOften = 1000;
// A count of 65,536 lines takes that many calls, so a run has only a few such sequences.
constexpr std::size_t kLongSequences = 2;

constexpr std::array<RowName, static_cast<std::size_t>(TaskRow::kCount)> kRows = {{
    {"idle: no task marker", kOften},
    {"idle: unpaired", kOften},
    {"idle: paired, one task marker", kOften},
    {"idle: paired, unequal task markers", kOften},
    {"idle: paired, equal ones after text", kOften},
    {"idle: paired, equal ones at the start", kOften},
    {"idle, kind > 1: id equals T, one task marker", kOften},
    {"idle, kind > 1: id equals T, unequal task markers", kOften},
    {"idle, kind > 1: id equals T, equal ones after text", kOften},
    {"idle, kind > 1: id equals T, equal ones at the start", kOften},
    {"idle, kind > 1: id and T both empty", kOften},
    {"idle, kind > 1: T left over", kOften},
    {"idle, kind > 1: other id, one task marker", kOften},
    {"idle, kind > 1: other id, unequal task markers", kOften},
    {"idle, kind > 1: other id, equal ones after text", kOften},
    {"idle, kind > 1: other id, equal ones at the start", kOften},
    {"idle: three equal task markers or more", kOften},
    {"open: no task marker", kOften},
    {"open: no task marker, the count wraps to 0", kLongSequences},
    {"open: unpaired", kOften},
    {"open: paired, the id of the open task", kOften},
    {"open: paired, another id", kOften},
    {"open, kind > 1: id equals T", kOften},
    {"open, kind > 1: other id", kOften},
    {"open, kind > 1: other id, the count wraps to 0", kLongSequences},
    {"open: task marker at position 0", kOften},
    {"open: two equal task markers", kOften},
    {"close: as the 65,536th line", kLongSequences},
    {"close: on a header not closed before", kOften},
    {"close: on a header that was closed before", kOften},
    {"close: on a node that is not a header and has a task first", kOften},
    {"close: index past the end", kOften},
    {"close: on a node without a child", kOften},
    {"close: on a node with a child of another kind first", kOften},
    {"header: anchor with an id", kOften},
    {"header: anchor without an id", kOften},
    {"line: the normalised line has other markers", kOften},
    {"pairing: two markers, but the id overlapped before", kOften},
}};

}  // namespace

void addTaskRows(const RunSettings& settings, Tally& tally) {
  for (const RowName& row : kRows) tally.addRow(row.name, settings.leastOf(row.least));
}

}  // namespace quenlith::oracle
