#include "quenlith/shared/appendix/AppendixBuilder.hpp"

namespace quenlith::shared::appendix {

// Here, so that the table of virtual operations exists once in a process.
AppendixBuilder::~AppendixBuilder() = default;

}  // namespace quenlith::shared::appendix
