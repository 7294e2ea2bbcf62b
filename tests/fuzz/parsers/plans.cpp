#include "fuzz/parsers/plans.hpp"

#include <array>
#include <string_view>

namespace quenlith::fuzz {

using oracle::AnswerRule;
using oracle::WorldPlan;

namespace {

AnswerRule chooseRule(Choices& choices) {
  constexpr std::array<std::u16string_view, 4> kElements = {u"output", u"control", u"text",
                                                            u"task"};
  AnswerRule rule;
  rule.kind = static_cast<AnswerRule::Kind>(choices.below(5));
  rule.element = choices.pick(kElements);
  rule.salt = choices.byte();
  return rule;
}

}  // namespace

WorldPlan choosePlan(Choices& choices) {
  WorldPlan plan;
  plan.codeElementParsers.resize(choices.below(4));
  for (AnswerRule& rule : plan.codeElementParsers) rule = chooseRule(choices);
  plan.contributorParsers.resize(choices.below(3));
  for (AnswerRule& rule : plan.contributorParsers) rule = chooseRule(choices);
  const std::uint8_t flags = choices.byte();
  plan.logging = (flags & 1U) != 0;
  plan.builtInDefaultParser = (flags & 2U) == 0;
  plan.hasDefaultParser = (flags & 4U) == 0;
  if ((flags & 8U) != 0) plan.oddResultOneIn = 4;
  if ((flags & 16U) != 0) plan.throwOneIn = 5;
  plan.salt = flags;
  return plan;
}

}  // namespace quenlith::fuzz
