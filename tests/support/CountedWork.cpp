#include "support/CountedWork.hpp"

namespace {

thread_local std::uint64_t blocks = 0;

}  // namespace

// The compiler calls it at the start of every basic block of a counted source.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the compiler's name
extern "C" void __sanitizer_cov_trace_pc() {
  ++blocks;
}

namespace quenlith::test {

std::uint64_t countedWork() {
  return blocks;
}

}  // namespace quenlith::test
