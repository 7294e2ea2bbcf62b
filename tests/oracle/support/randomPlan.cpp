#include "oracle/support/randomPlan.hpp"

#include <array>
#include <string_view>

namespace quenlith::oracle {

namespace {

constexpr std::array<std::u16string_view, 5> kAcceptedElements = {u"output", u"control", u"text",
                                                                  u"task", u"output"};

AnswerRule randomRule(Random& random) {
  AnswerRule rule;
  constexpr std::array<AnswerRule::Kind, 6> kKinds = {
      AnswerRule::Kind::kNever,    AnswerRule::Kind::kAlways,  AnswerRule::Kind::kElement,
      AnswerRule::Kind::kByMarker, AnswerRule::Kind::kElement, AnswerRule::Kind::kByCall};
  rule.kind = random.pick(kKinds);
  rule.element = random.pick(kAcceptedElements);
  rule.salt = random.next();
  return rule;
}

std::vector<AnswerRule> randomRules(Random& random, std::size_t most) {
  std::vector<AnswerRule> rules(random.between(0, most));
  for (AnswerRule& rule : rules) rule = randomRule(random);
  return rules;
}

}  // namespace

WorldPlan randomPlan(Random& random) {
  WorldPlan plan;
  plan.codeElementParsers = randomRules(random, 3);
  plan.hasDefaultParser = !random.oneIn(50);
  plan.builtInDefaultParser = random.oneIn(2);
  if (!random.oneIn(3)) plan.contributorParsers = randomRules(random, 3);
  plan.oddResultOneIn = random.oneIn(10) ? 4 : 0;
  plan.throwOneIn = random.oneIn(50) ? 5 : 0;
  plan.salt = random.next();
  plan.logging = !random.oneIn(4);
  return plan;
}

WorldPlan randomPlainPlan(Random& random) {
  if (random.oneIn(10)) return randomPlan(random);
  WorldPlan plan;
  plan.builtInDefaultParser = !random.oneIn(4);
  plan.throwOneIn = random.oneIn(10) ? 12 : 0;
  plan.salt = random.next();
  plan.logging = random.oneIn(2);
  return plan;
}

}  // namespace quenlith::oracle
