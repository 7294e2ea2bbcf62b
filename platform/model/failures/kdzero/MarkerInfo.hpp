#pragma once

#include <utility>

#include "fl/i18n/ustring.hpp"

namespace failures::kdzero {

/// Names the marker that a failure is about. A plain value; text is UTF-16.
class MarkerInfo {
 public:
  using ustring = fl::i18n::ustring;

  const ustring& getMarkerId() const noexcept { return markerId; }
  const ustring& getFeatureId() const noexcept { return featureId; }
  const ustring& getSubFeatureId() const noexcept { return subFeatureId; }

  MarkerInfo& setMarkerId(ustring id) noexcept {
    markerId = std::move(id);
    return *this;
  }
  MarkerInfo& setFeatureId(ustring id) noexcept {
    featureId = std::move(id);
    return *this;
  }
  MarkerInfo& setSubFeatureId(ustring id) noexcept {
    subFeatureId = std::move(id);
    return *this;
  }

  friend bool operator==(const MarkerInfo&, const MarkerInfo&) = default;

 private:
  ustring markerId;
  ustring featureId;
  ustring subFeatureId;
};

}  // namespace failures::kdzero
