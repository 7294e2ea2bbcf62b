#pragma once

#include <boost/uuid/uuid.hpp>

namespace quenlith::test {

/// The id that a builder takes where the element needs none.
inline constexpr boost::uuids::uuid kNil{};

}  // namespace quenlith::test
