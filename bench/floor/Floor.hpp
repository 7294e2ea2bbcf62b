#pragma once

#include "harness/Corpus.hpp"
#include "harness/Subject.hpp"

namespace bench::floor {

/// A lower bound for the work: looks for "<@" in each line, creates a reference-counted line node
/// and a reference-counted text node with a copy of the text in an arena, and appends both.
std::unique_ptr<Subject> make(const Corpus& corpus);

}  // namespace bench::floor
