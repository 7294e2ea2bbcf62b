#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fl/i18n/ustring.hpp"
#include "quenlith/build/markup/code/failure/failureIds.hpp"

namespace {

using quenlith::build::markup::code::failure::kFailureIds;
using testing::HasSubstr;

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream input(file);
  EXPECT_TRUE(input) << file;
  return {std::istreambuf_iterator<char>(input), {}};
}

/// Returns the expected output of all golden cases of the replay, concatenated.
std::string goldenAnswers() {
  std::string answers;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(TREE "/tests/golden/replay")) {
    if (entry.path().extension() == ".expected") answers += contentOf(entry.path());
  }
  return answers;
}

TEST(FailureIds, EachHasAGoldenCase) {
  const std::string answers = goldenAnswers();
  for (const std::u16string_view id : kFailureIds) {
    EXPECT_THAT(answers, HasSubstr("\"failureId\":\"" + fl::i18n::ustring_to_utf8(id) + "\""));
  }
}

TEST(FailureIds, EachIsDocumented) {
  const std::string page = contentOf(TREE "/docs/json.md");
  for (const std::u16string_view id : kFailureIds) {
    EXPECT_THAT(page, HasSubstr("\n| `" + fl::i18n::ustring_to_utf8(id) + "` |"));
  }
}

}  // namespace
