#include "foundation/core/except/IException.hpp"

#include "foundation/core/except/IMsgIDException.hpp"
#include "foundation/core/except/IUserException.hpp"

namespace foundation::core::except {

// Defined here so that an exception can be caught in another library than that which threw it.
IException::~IException() = default;
IUserException::~IUserException() = default;
IMsgIDException::~IMsgIDException() = default;

}  // namespace foundation::core::except
