#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "failures/kdzero/MarkerInfo.hpp"
#include "fl/i18n/ustring.hpp"
#include "foundation/json/Value.hpp"
#include "quenlith/export/model.hpp"

namespace failures::kdzero {

/// The record of a rule that a marker broke. A plain value.
///
/// Two records are equal when all three fields are; a record always equals its own copy.
class ParserFailure {
 public:
  using ustring = fl::i18n::ustring;
  /// Keys are UTF-8.
  using Data = std::map<std::string, foundation::json::Value>;

  /// Which rule was broken.
  const ustring& getFailureId() const noexcept { return failureId; }
  const MarkerInfo& getMarkerInfo() const noexcept { return markerInfo; }
  const Data& getFailureData() const noexcept { return failureData; }

  ParserFailure& setFailureId(ustring id) noexcept {
    failureId = std::move(id);
    return *this;
  }
  ParserFailure& setMarkerInfo(MarkerInfo info) noexcept {
    markerInfo = std::move(info);
    return *this;
  }
  ParserFailure& setFailureData(Data data) noexcept {
    failureData = std::move(data);
    return *this;
  }

  friend bool operator==(const ParserFailure&, const ParserFailure&) = default;

 private:
  ustring failureId;
  MarkerInfo markerInfo;
  Data failureData;
};

}  // namespace failures::kdzero

/// Agrees with the equality of records.
template <>
struct QUENLITH_MODEL_EXPORT std::hash<failures::kdzero::ParserFailure> {
  std::size_t operator()(const failures::kdzero::ParserFailure& failure) const;
};
