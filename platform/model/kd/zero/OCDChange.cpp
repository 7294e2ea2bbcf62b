#include "kd/zero/OCDChange.hpp"

#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/OCDChangeDescriptor.hpp"

namespace kd::zero {

// Defined here so that each class has one virtual table, that of this library.
OCDChange::~OCDChange() = default;
OCDChangeDescriptor::~OCDChangeDescriptor() = default;
ChangeListener::~ChangeListener() = default;

}  // namespace kd::zero
