#pragma once

#include "kd/zero/Model.hpp"

namespace contributors::kdzero {

class LineData {
 public:
  explicit operator bool() const;
};

}  // namespace contributors::kdzero
