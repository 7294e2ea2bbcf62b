#include "exhaustive/TaskAlphabets.hpp"

#include <array>
#include <cstdint>
#include <string_view>

namespace quenlith::exhaustive {

namespace {

using Text = std::u16string_view;

// A line that begins with its marker and one that does not: both open and close A. A line whose
// first marker is not that of the task, and one with three equal markers.
constexpr Text kOpenA = u"# <@task#a>";
constexpr Text kCloseA = u"x # <@task#a>";
constexpr Text kB = u"# <@text:anchor#t> # <@task#b>";
constexpr Text kPlain = u"x = 1";
constexpr Text kBothOnALine = u"# <@task#a> # <@task#a>";
constexpr Text kRepeated = u"x # <@task#a> # <@task#a> # <@task#a>";
constexpr std::array<Text, 6> kLines = {kOpenA, kCloseA, kB, kPlain, kBothOnALine, kRepeated};

constexpr Text kPaired = u"# <@task#a>\n# <@task#b>\nx\n# <@task#b>\n# <@task#a>";
// As long as the block above.
constexpr Text kUnpaired = u"# <@task#a>\n# <@task#b>\nx\n# <@task#b>\n# <@task#c>";
constexpr Text kThrice = u"# <@task#a>\n# <@task#a>\nx\n# <@task#b>\n# <@task#a>";

TaskCall callOf(Text line, std::uint8_t kind, Text block) {
  TaskCall call;
  call.snippet.text = line;
  call.snippet.type.kind = kind;
  call.snippet.auxiliaryText = block;
  return call;
}

TaskCall resetCall() {
  TaskCall call;
  call.isReset = true;
  return call;
}

}  // namespace

TaskCalls callsOfAllKinds() {
  TaskCalls calls = {resetCall()};
  for (const Text line : kLines) {
    for (std::uint8_t kind = 0; kind < 4; ++kind) calls.push_back(callOf(line, kind, kPaired));
  }
  return calls;
}

TaskCalls callsOfTwoKinds() {
  TaskCalls calls = {resetCall()};
  for (const Text line : kLines) {
    calls.push_back(callOf(line, 3, kPaired));
    if (line != kPlain) calls.push_back(callOf(line, 0, kPaired));
  }
  return calls;
}

TaskCalls callsInSeveralBlocks() {
  TaskCalls calls = {resetCall(), callOf(kPlain, 3, kPaired), callOf(kOpenA, 3, kPaired)};
  for (const Text block : {kPaired, kUnpaired, kThrice}) {
    for (const Text line : {kOpenA, kB, kBothOnALine}) calls.push_back(callOf(line, 0, block));
  }
  return calls;
}

TaskCalls callsOfAHost() {
  TaskCalls calls = {resetCall()};
  for (const Text line : kLines) calls.push_back(callOf(line, 0, {}));
  return calls;
}

}  // namespace quenlith::exhaustive
