#pragma once

#include "harness/Corpus.hpp"
#include "harness/Subject.hpp"

namespace bench::floor {

/// The least that the job costs: looks for "<@" in each line, makes a counted line node and a
/// counted text node with a copy of the text, all out of an arena, and appends both.
std::unique_ptr<Subject> make(const Corpus& corpus);

}  // namespace bench::floor
