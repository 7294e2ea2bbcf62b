#include "tessera/run/FileJob.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "tessera/diagnostics/Problem.hpp"
#include "tessera/source/SourceDecoder.hpp"

namespace {

using tessera::diagnostics::ProblemError;

class Job : public tessera::run::FileJob {
 public:
  using FileJob::loseWithoutMemory;
};

template <typename Step>
std::string messageOf(Step step) {
  try {
    Job::loseWithoutMemory("f", step);
  } catch (const ProblemError& error) {
    return error.what();
  }
  return "none";
}

TEST(FileJob, AFileThatIsTooLargeIsAProblemOfThatFile) {
  EXPECT_EQ(messageOf([] { throw std::bad_alloc(); }),
            "f: error: there is not enough memory for this file; run fewer workers (-j), or split "
            "the file");
  // More than a text can ever have.
  constexpr std::size_t kSizeBytes = std::size_t{5} << 60;
  EXPECT_EQ(messageOf([] { tessera::source::SourceDecoder("f", kSizeBytes); }),
            "f: error: this file is too large; split the file");
}

}  // namespace
