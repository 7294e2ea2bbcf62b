#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <limits>

#include "oracle/model/ModelTwin.hpp"
#include "oracle/model/RealModel.hpp"
#include "oracle/support/Random.hpp"
#include "oracle/support/RunSettings.hpp"
#include "oracle/support/Tally.hpp"

namespace quenlith::oracle {
namespace {

using failures::kdzero::ParserFailure;
using foundation::json::Value;

constexpr std::size_t kCases = 4'000;
constexpr std::size_t kLeast = 1'000;
constexpr std::array<const char*, 6> kAttempts = {"appended",
                                                  "skipped",
                                                  "refused: of another model",
                                                  "refused: within itself",
                                                  "refused: no element",
                                                  "a listener threw"};

std::string showBox(const BoxRecord& box) {
  std::string out;
  for (const auto& list : box.lists) {
    out += '[';
    for (const std::size_t element : list) out += std::to_string(element) + ' ';
    out += ']';
  }
  if (box.container) out += " in " + std::to_string(*box.container);
  if (box.head) out += " head " + std::to_string(*box.head);
  return out + ' ' + std::to_string(box.tokens.size()) + ' ' +
         std::to_string(box.uniqueTokens.size()) + ' ' + std::to_string(box.failures.size());
}

/// The twin and the real model, given the same operations.
class ModelPair {
 public:
  ModelPair(Random& random, Tally& tally) : random(random), tally(tally) {
    for (int i = 0; i < 3; ++i) addBox(false, false);
  }

  /// Carries out one random operation. Returns false if the outcomes differ.
  bool step() {
    const std::size_t choice = random.below(100);
    if (choice < 8) {
      addBox(random.oneIn(6), random.oneIn(8));
      return true;
    }
    if (choice < 10) return toggleListener();
    if (choice < 70) return append();
    if (choice < 80) return appendToken();
    if (choice < 96) return appendFailure();
    return withoutCommit();
  }

  /// Returns all operations so far, and the boxes that differ.
  std::string report() const {
    std::string out;
    for (const std::string& entry : history) out += entry + '\n';
    for (std::size_t number = 0; number < twin.boxes.size(); ++number) {
      if (!isEqual(twin.boxes[number], real.read(number))) {
        out += "box " + std::to_string(number) + " differs\ntwin: " + showBox(twin.boxes[number]) +
               "\nreal: " + showBox(real.read(number)) + '\n';
      }
    }
    return out + "operations " + std::to_string(twin.operations) + " and " +
           std::to_string(real.operations()) + '\n';
  }

  const char* findBrokenInvariant() const { return real.findBrokenInvariant(); }

  bool isEqual() const {
    for (std::size_t number = 0; number < twin.boxes.size(); ++number) {
      if (!isEqual(twin.boxes[number], real.read(number))) return false;
    }
    return twin.operations == real.operations() && twin.told == real.told;
  }

 private:
  std::size_t addBox(bool isProxy, bool isForeign) {
    history.push_back("new box " + std::to_string(twin.boxes.size()) + (isProxy ? " proxy" : "") +
                      (isForeign ? " foreign" : ""));
    real.addBox(isProxy, isForeign);
    return twin.addBox(isProxy, isForeign);
  }

  bool toggleListener() {
    twin.listenerThrows = !twin.listenerThrows;
    real.listenerThrows = twin.listenerThrows;
    return true;
  }

  std::size_t anyBox() { return random.below(twin.boxes.size()); }
  // Few owners, so that their collections grow large.
  std::size_t anyOwner() { return random.oneIn(2) ? random.below(2) : anyBox(); }
  BoxList anyList() { return static_cast<BoxList>(random.below(kBoxLists)); }

  bool same(const std::string& what, Attempt ofTwin, Attempt ofReal) {
    tally.count(static_cast<std::size_t>(ofTwin));
    history.push_back(what + ": twin " + kAttempts[static_cast<std::size_t>(ofTwin)] + ", real " +
                      kAttempts[static_cast<std::size_t>(ofReal)]);
    return ofTwin == ofReal;
  }

  bool append() {
    const std::size_t owner = anyOwner();
    const BoxList list = anyList();
    std::optional<std::size_t> element;
    if (!random.oneIn(20)) element = anyBox();
    const std::string what = "box " + (element ? std::to_string(*element) : "none") + " to list " +
                             std::to_string(static_cast<int>(list)) + " of " +
                             std::to_string(owner);
    return same(what, twin.append(owner, list, element), real.append(owner, list, element));
  }

  bool appendToken() {
    const std::size_t owner = anyOwner();
    const auto list = random.oneIn(2) ? ValueList::kTokens : ValueList::kUniqueTokens;
    const int token = static_cast<int>(random.below(12));
    return same("token " + std::to_string(token), twin.appendToken(owner, list, token),
                real.appendToken(owner, list, token));
  }

  bool appendFailure() {
    const std::size_t owner = random.below(2);
    const ParserFailure failure = anyFailure();
    return same("failure", twin.appendFailure(owner, failure), real.appendFailure(owner, failure));
  }

  // Only new boxes: a rollback does not move an older box back to its previous container.
  bool withoutCommit() {
    const std::size_t owner = random.below(2);
    constexpr std::array<BoxList, 5> kLists = {BoxList::kPlain, BoxList::kUnique, BoxList::kOwned,
                                               BoxList::kOwnedOnce, BoxList::kKids};
    const BoxList list = random.pick(kLists);
    std::vector<std::size_t> added(random.between(0, 3));
    for (std::size_t& box : added) box = addBox(false, false);
    history.push_back(std::to_string(added.size()) + " new boxes, not committed, to list " +
                      std::to_string(static_cast<int>(list)) + " of " + std::to_string(owner));
    twin.withoutCommit(owner, list, [&] {
      for (const std::size_t box : added) twin.append(owner, list, box);
    });
    real.withoutCommit(owner, list, [&] {
      for (const std::size_t box : added) real.append(owner, list, box);
    });
    return true;
  }

  Value anyValue(std::size_t depth) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    switch (random.below(depth < 2 ? 12 : 10)) {
      case 0:
        return {};
      case 1:
        return foundation::json::Null();
      case 2:
        return random.oneIn(2);
      case 3:
        return static_cast<std::int64_t>(random.below(2));
      case 4:
        return static_cast<std::uint64_t>(random.below(2));
      case 5:
        return static_cast<double>(random.below(2));
      case 6:
        return random.oneIn(2) ? -0.0 : kNaN;
      case 7:
        return static_cast<float>(random.below(2));
      case 8:
        return random.oneIn(2) ? -0.0F : std::numeric_limits<float>::quiet_NaN();
      case 9:
        return std::string(random.below(2), 'x');
      case 10:
        return foundation::json::Array(random.below(3), anyValue(depth + 1));
      default:
        return foundation::json::Object{{"k", anyValue(depth + 1)}};
    }
  }

  ParserFailure anyFailure() {
    ParserFailure failure;
    failures::kdzero::MarkerInfo info;
    if (random.oneIn(4)) failure.setFailureId(u"id");
    if (random.oneIn(4)) info.setFeatureId(u"id");
    if (random.oneIn(8)) info.setMarkerId(u"id");
    if (random.oneIn(8)) info.setSubFeatureId(u"id");
    failure.setMarkerInfo(info);
    if (!random.oneIn(4)) failure.setFailureData({{random.oneIn(4) ? "b" : "a", anyValue(0)}});
    return failure;
  }

  static bool isEqual(const BoxRecord& left, const BoxRecord& right) {
    return left.isProxy == right.isProxy && left.isForeign == right.isForeign &&
           left.lists == right.lists && left.container == right.container &&
           left.head == right.head && left.tokens == right.tokens &&
           left.uniqueTokens == right.uniqueTokens &&
           std::equal(left.failures.begin(), left.failures.end(), right.failures.begin(),
                      right.failures.end(), sameFailure);
  }

  Random& random;
  Tally& tally;
  std::vector<std::string> history;
  ModelTwin twin;
  RealModel real;
};

bool compare(const RunSettings& settings, std::size_t number, Tally& tally) {
  Random random(settings.seedOf(number));
  ModelPair pair(random, tally);
  const std::size_t steps = random.between(1, 400);
  for (std::size_t step = 0; step < steps; ++step) {
    const bool last = step + 1 == steps;
    if (pair.step() && (!(last || random.oneIn(40)) || pair.isEqual())) continue;
    ADD_FAILURE() << settings.repeatHint(number) << ", step " << step << '\n' << pair.report();
    return false;
  }
  const char* broken = pair.findBrokenInvariant();
  if (broken == nullptr) return true;
  ADD_FAILURE() << settings.repeatHint(number) << ": broken: " << broken << '\n' << pair.report();
  return false;
}

bool runCase(const RunSettings& settings, std::size_t number, Tally& tally) {
  if (!compare(settings, number, tally)) return false;
  if (Box::Impl::alive() == 0) return true;
  ADD_FAILURE() << settings.repeatHint(number) << ": " << Box::Impl::alive()
                << " boxes without references are not destroyed";
  return false;
}

TEST(ModelOracle, RandomAppendsHaveTheSameResultsAsTheTwin) {
  const RunSettings settings = RunSettings::fromEnvironment(kCases);
  Tally tally;
  for (const char* name : kAttempts) tally.addRow(name, settings.leastOf(kLeast));
  const auto run = [&](std::size_t number) { return runCase(settings, number, tally); };
  if (!settings.runCases(run)) return;
  std::cout << tally;
  for (const std::string& row : tally.shortRows()) ADD_FAILURE() << "too seldom: " << row;
}

}  // namespace
}  // namespace quenlith::oracle
