#pragma once

#include <string_view>

namespace tessera::html {

/// Returns the style sheet of a page: page.css without its comments.
std::string_view styleSheet() noexcept;

/// Returns the source that allows the style sheet in a content security policy: 'sha256-...'.
std::string_view styleSource() noexcept;

}  // namespace tessera::html
