#pragma once

#include <cstdint>

#include "document/kdzero/Node.hpp"

namespace document::kdzero {

class TesseraDocument {
 public:
  kd::zero::Model getModel() const;
  void addChild(Node node);
  std::uint64_t getNumberOfChildren() const;
  Node getChildAt(std::uint64_t index) const;
};

}  // namespace document::kdzero
