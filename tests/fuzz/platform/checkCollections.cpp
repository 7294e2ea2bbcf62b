#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

#include "failures/kdzero/ParserFailure.hpp"
#include "fuzz/Choices.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"
#include "oracle/model/ModelTwin.hpp"
#include "oracle/model/RealModel.hpp"

namespace quenlith::fuzz {

using failures::kdzero::ParserFailure;
using oracle::BoxList;
using oracle::BoxRecord;
using oracle::ValueList;

namespace {

constexpr std::size_t kMostBoxes = 24;

/// The twin and the real collections, given the same operations.
class CollectionPair {
 public:
  explicit CollectionPair(Choices& choices) : choices(choices) {
    for (int i = 0; i < 3; ++i) addBox(false, false);
  }

  void step() {
    switch (choices.below(8)) {
      case 0:
        return addBox(choices.flag(), choices.flag());
      case 1:
        twin.listenerThrows = !twin.listenerThrows;
        real.listenerThrows = twin.listenerThrows;
        return;
      case 2:
        return appendToken();
      case 3:
        return appendFailure();
      case 4:
        return withoutCommit();
      default:
        return append();
    }
  }

  void check() const {
    for (std::size_t number = 0; number < twin.boxes.size(); ++number) {
      require(areAlike(twin.boxes[number], real.read(number)), "each box has what its twin has");
    }
    require(twin.operations == real.operations(), "the operations are counted");
    require(twin.told == real.told, "the listener is told the same changes");
    const char* broken = real.findBrokenInvariant();
    require(broken == nullptr, broken);
  }

 private:
  void addBox(bool isProxy, bool isForeign) {
    if (twin.boxes.size() == kMostBoxes) return;
    real.addBox(isProxy, isForeign);
    twin.addBox(isProxy, isForeign);
  }

  std::size_t anyBox() { return choices.below(twin.boxes.size()); }

  void append() {
    const std::size_t owner = anyBox();
    const auto list = static_cast<BoxList>(choices.below(oracle::kBoxLists));
    // One number more than there are boxes is the empty handle.
    const std::size_t number = choices.below(twin.boxes.size() + 1);
    const auto element = number == twin.boxes.size() ? std::nullopt : std::optional(number);
    require(twin.append(owner, list, element) == real.append(owner, list, element),
            "a box is appended, skipped or refused alike");
  }

  void appendToken() {
    const std::size_t owner = anyBox();
    const auto list = choices.flag() ? ValueList::kTokens : ValueList::kUniqueTokens;
    const int token = choices.byte();
    require(twin.appendToken(owner, list, token) == real.appendToken(owner, list, token),
            "a value is appended or skipped alike");
  }

  void appendFailure() {
    const std::size_t owner = anyBox();
    ParserFailure failure;
    if (choices.flag()) failure.setFailureId(u"id");
    failure.setFailureData({{choices.flag() ? "a" : "b", foundation::json::Value(choices.flag())}});
    require(twin.appendFailure(owner, failure) == real.appendFailure(owner, failure),
            "a failure is appended or skipped alike");
  }

  // Appends a new box only: a rollback does not move an older one back to its previous container.
  void withoutCommit() {
    if (twin.boxes.size() == kMostBoxes) return;
    const std::size_t owner = choices.below(2);
    const auto list = static_cast<BoxList>(choices.below(static_cast<int>(BoxList::kPeers)));
    const std::size_t box = twin.boxes.size();
    addBox(false, false);
    twin.withoutCommit(owner, list, [&] { twin.append(owner, list, box); });
    real.withoutCommit(owner, list, [&] { real.append(owner, list, box); });
  }

  static bool areAlike(const BoxRecord& left, const BoxRecord& right) {
    return left.isProxy == right.isProxy && left.isForeign == right.isForeign &&
           left.lists == right.lists && left.container == right.container &&
           left.head == right.head && left.tokens == right.tokens &&
           left.uniqueTokens == right.uniqueTokens &&
           std::ranges::equal(left.failures, right.failures, oracle::sameFailure);
  }

  Choices& choices;
  oracle::ModelTwin twin;
  oracle::RealModel real;
};

}  // namespace

void checkCollections(std::string_view input) {
  Choices choices(input);
  {
    CollectionPair pair(choices);
    while (!choices.atEnd()) {
      pair.step();
      pair.check();
    }
  }
  require(oracle::Box::Impl::alive() == 0, "boxes without references are destroyed");
}

}  // namespace quenlith::fuzz
