#pragma once

#include "fl/i18n/ustring.hpp"

namespace failures::kdzero {

class MarkerInfo {
 public:
  MarkerInfo& setMarkerId(const fl::i18n::ustring& id);
  MarkerInfo& setFeatureId(const fl::i18n::ustring& id);
  MarkerInfo& setSubFeatureId(const fl::i18n::ustring& id);
};

}  // namespace failures::kdzero
