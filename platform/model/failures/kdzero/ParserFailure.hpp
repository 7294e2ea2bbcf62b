#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "failures/kdzero/MarkerInfo.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/model.hpp"

namespace failures::kdzero {

/// The record of a rule that a marker violates. A plain value.
///
/// Two records are equal when all three fields are; a record always equals its own copy.
class ParserFailure {
 public:
  using ustring = fl::i18n::ustring;
  /// Keys are UTF-8.
  using Data = std::map<std::string, foundation::json::Value>;

  /// Identifies the rule.
  const ustring& getFailureId() const noexcept { return failureId; }
  const MarkerInfo& getMarkerInfo() const noexcept { return markerInfo; }
  const Data& getFailureData() const noexcept {
    return failureData == nullptr ? kNoData : *failureData;
  }

  ParserFailure& setFailureId(ustring id) noexcept {
    failureId = std::move(id);
    return *this;
  }
  ParserFailure& setMarkerInfo(MarkerInfo info) noexcept {
    markerInfo = std::move(info);
    return *this;
  }
  ParserFailure& setFailureData(Data data) {
    failureData = data.empty() ? nullptr : std::make_shared<const Data>(std::move(data));
    return *this;
  }

  friend bool operator==(const ParserFailure& left, const ParserFailure& right) {
    return left.failureId == right.failureId && left.markerInfo == right.markerInfo &&
           (left.failureData == right.failureData ||
            left.getFailureData() == right.getFailureData());
  }

 private:
  ustring failureId;
  MarkerInfo markerInfo;
  QUENLITH_MODEL_EXPORT static const Data kNoData;

  // Immutable; null if there is no data. Shared by the copies of a record: the data may be most of
  // the source, and each of many markers without a partner has it.
  std::shared_ptr<const Data> failureData;
};

}  // namespace failures::kdzero

/// Agrees with the equality of records. The hash has a random key per process, so that nobody can
/// write a text whose failures all have the same hash.
template <>
struct QUENLITH_MODEL_EXPORT std::hash<failures::kdzero::ParserFailure> {
  std::size_t operator()(const failures::kdzero::ParserFailure& failure) const;
};
