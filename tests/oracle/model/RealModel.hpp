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
  /// Returns the first invariant of the two models that is broken, or null.
  const char* findBrokenInvariant() const;
  /// Returns the content of a box in the form that the twin uses.
  BoxRecord read(std::size_t box) const;

  std::vector<ToldChange> told;
  bool listenerThrows = false;

 private:
  struct ListenerFailure {};

  void modifying(const kd::zero::AbstractOwnedCollection& collection,
                 std::unique_ptr<kd::zero::OCDChange> change) override;
  const char* findBrokenInvariant(const kd::zero::Model& model) const;
  std::optional<std::size_t> numberOf(const kd::zero::ModelElement& element) const;

  kd::zero::Model own;
  kd::zero::Model foreign;
  std::vector<Box> boxes;
};

}  // namespace quenlith::oracle
