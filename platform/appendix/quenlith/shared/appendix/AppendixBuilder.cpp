#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace quenlith::shared::appendix {

// The key function: defined here so that the vtable and the type information are emitted in this
// library only.
AppendixBuilder::~AppendixBuilder() = default;

}  // namespace quenlith::shared::appendix
