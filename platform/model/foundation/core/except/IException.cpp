#include "foundation/core/except/IException.hpp"

#include "foundation/core/except/IMsgIDException.hpp"
#include "foundation/core/except/IUserException.hpp"

namespace foundation::core::except {

// Defined here so that each class has one type_info, and a library can catch what another one
// throws.
IException::~IException() = default;
IUserException::~IUserException() = default;
IMsgIDException::~IMsgIDException() = default;

}  // namespace foundation::core::except
