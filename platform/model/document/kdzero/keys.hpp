#pragma once

#include "kd/zero/meta/Class.hpp"
#include "kd/zero/meta/Property.hpp"

// The keys of what every line of a document is made of.
namespace document::kdzero::keys {

inline constexpr kd::zero::meta::ClassKey kLineNode{0};
inline constexpr kd::zero::meta::ClassKey kPlainTextNode{1};

inline constexpr kd::zero::meta::PropertyKey kChildren{.index = 0, .linksContainer = true};

}  // namespace document::kdzero::keys
