#pragma once

#include <string>
#include <string_view>

namespace tessera::reports {

/// Returns a JSON text of the same meaning that can be part of a page, also within a script: with
/// escapes for what nobody could see, and for each "<" that could begin a tag or a comment.
std::string embeddable(std::string_view json);

}  // namespace tessera::reports
