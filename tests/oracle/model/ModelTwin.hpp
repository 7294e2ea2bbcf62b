#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "failures/kdzero/ParserFailure.hpp"
#include "oracle/model/Box.hpp"

namespace quenlith::oracle {

/// The collections of boxes that a box has.
enum class BoxList { kPlain, kUnique, kOwned, kOwnedOnce, kKids, kPeers, kBroken, kCount };
/// The collections of values that a box has.
enum class ValueList { kTokens, kUniqueTokens, kFailures, kCount };

constexpr std::size_t kBoxLists = static_cast<std::size_t>(BoxList::kCount);

/// The outcome of one attempt to change a collection.
enum class Attempt { kAppended, kSkipped, kForeign, kCycle, kNoElement, kListenerThrew };

/// One notification of a listener.
struct ToldChange {
  int operation = 0;
  std::int64_t index = 0;
  /// The size of the collection at the time of the notification.
  std::size_t sizeBefore = 0;

  friend bool operator==(const ToldChange&, const ToldChange&) = default;
};

/// The content of one box in plain vectors. Boxes are identified by their number.
struct BoxRecord {
  bool isProxy = false;
  bool isForeign = false;
  std::vector<std::vector<std::size_t>> lists = std::vector<std::vector<std::size_t>>(kBoxLists);
  std::optional<std::size_t> container;
  BoxList containerList = BoxList::kCount;
  std::optional<std::size_t> head;
  std::vector<int> tokens;
  std::vector<int> uniqueTokens;
  std::vector<failures::kdzero::ParserFailure> failures;
};

/// The rules of appending to the collections of a model, implemented literally on plain vectors.
class ModelTwin {
 public:
  std::size_t addBox(bool isProxy, bool isForeign);

  /// Appends box `element` (none: the empty handle) to a list of `owner`.
  Attempt append(std::size_t owner, BoxList list, std::optional<std::size_t> element);
  Attempt appendToken(std::size_t owner, ValueList list, int token);
  Attempt appendFailure(std::size_t owner, const failures::kdzero::ParserFailure& failure);

  /// Starts an operation on a list, calls `appends`, and ends the operation without a commit.
  void withoutCommit(std::size_t owner, BoxList list, const std::function<void()>& appends);

  std::vector<BoxRecord> boxes;
  std::uint64_t operations = 0;
  std::vector<ToldChange> told;
  bool listenerThrows = false;

 private:
  bool isIn(std::size_t owner, BoxList list, std::size_t element) const;
  bool isWithin(std::size_t element, std::size_t root) const;
  void setContainer(std::size_t owner, BoxList list, std::size_t element);
  Attempt announce(std::size_t size);
};

/// Tells whether two failures have the same fields; a NaN counts as the same as a NaN.
bool sameFailure(const failures::kdzero::ParserFailure& left,
                 const failures::kdzero::ParserFailure& right);

}  // namespace quenlith::oracle
