#pragma once

#include <map>
#include <string>

#include "failures/kdzero/MarkerInfo.hpp"
#include "foundation/json/Value.hpp"

namespace failures::kdzero {

class ParserFailure {
 public:
  ParserFailure& setFailureId(const fl::i18n::ustring& id);
  ParserFailure& setMarkerInfo(const MarkerInfo& info);
  ParserFailure& setFailureData(const std::map<std::string, foundation::json::Value>& data);
  bool operator==(const ParserFailure& other) const;
};

}  // namespace failures::kdzero
