#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/Model.hpp"
#include "oracle/model/Box.hpp"
#include "oracle/model/ModelTwin.hpp"

namespace quenlith::oracle {

/// The same operations as `ModelTwin` has, on real models: one, and a second one for the
/// foreign boxes.
class RealModel final : private kd::zero::ChangeListener {
 public:
  RealModel();
  ~RealModel() override;

  void addBox(bool isProxy, bool isForeign);
  Attempt append(std::size_t owner, BoxList list, std::optional<std::size_t> element);
  Attempt appendToken(std::size_t owner, ValueList list, int token);
  Attempt appendFailure(std::size_t owner, const failures::kdzero::ParserFailure& failure);
  void withoutCommit(std::size_t owner, BoxList list, const std::function<void()>& appends);

  std::uint64_t operations() const;
  /// Returns what a box holds as the twin would have it.
  BoxRecord read(std::size_t box) const;

  std::vector<ToldChange> told;
  bool listenerThrows = false;

 private:
  struct ListenerFailure {};

  void modifying(const kd::zero::AbstractOwnedCollection& collection,
                 std::unique_ptr<kd::zero::OCDChange> change) override;
  std::optional<std::size_t> numberOf(const kd::zero::ModelElement& element) const;

  kd::zero::Model own;
  kd::zero::Model foreign;
  std::vector<Box> boxes;
};

}  // namespace quenlith::oracle
