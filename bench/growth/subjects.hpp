#pragma once

#include <cstddef>

#include "harness/Corpus.hpp"
#include "harness/Subject.hpp"

namespace bench::growth {

// Each of these functions creates input that grows with `count` in one dimension only.

/// The first thousand lines, repeated.
std::unique_ptr<Subject> makeLines(const Corpus& lines, std::size_t count);

/// One line of markers: output, control, anchor in turn.
std::unique_ptr<Subject> makeMarkers(const Corpus& lines, std::size_t count);

/// One line in which each marker owns a range, each range within the one before.
std::unique_ptr<Subject> makeRanges(const Corpus& lines, std::size_t count);

/// One line whose markers all have position data that cannot be used.
std::unique_ptr<Subject> makeFailures(const Corpus& lines, std::size_t count);

/// Tasks that open and close in a block of fixed length.
std::unique_ptr<Subject> makeTasks(const Corpus& lines, std::size_t count);

/// Ten tasks in a block of `count` lines.
std::unique_ptr<Subject> makeBlock(const Corpus& lines, std::size_t count);

/// An appendix to which entries are added, each of which is then looked up.
std::unique_ptr<Subject> makeAppendix(const Corpus& lines, std::size_t count);

}  // namespace bench::growth
