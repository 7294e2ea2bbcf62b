#pragma once

#include "kd/zero/meta/Class.hpp"
#include "kd/zero/meta/Property.hpp"

// Fixed keys of the classes and the collection that each line of a document uses. A constant key
// makes the header of a new element or collection a constant: one store instead of a load and two.
// classes.cpp and Properties.cpp pass them to the descriptions; no two may be equal.
namespace document::kdzero::keys {

inline constexpr kd::zero::meta::ClassKey kLineNode{0};
inline constexpr kd::zero::meta::ClassKey kPlainTextNode{1};

inline constexpr kd::zero::meta::PropertyKey kChildren{.index = 0, .linksContainer = true};

}  // namespace document::kdzero::keys
