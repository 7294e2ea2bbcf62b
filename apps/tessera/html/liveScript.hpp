#pragma once

#include <string_view>

namespace tessera::html {

/// Returns the script of a live page: live.js without its comments.
std::string_view liveScript() noexcept;

/// Returns the source that allows the script in a content security policy: 'sha256-...'.
std::string_view liveScriptSource() noexcept;

}  // namespace tessera::html
