#include "kd/zero/PrimitiveCollection.hpp"

namespace kd::zero {

PrimitiveCollection::~PrimitiveCollection() = default;

}  // namespace kd::zero
