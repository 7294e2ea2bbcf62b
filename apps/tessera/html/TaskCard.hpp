#pragma once

#include <cstdint>
#include <string_view>

#include "document/kdzero/Node.hpp"
#include "tessera/html/HtmlText.hpp"

namespace tessera::html {

/// Returns the text of the task whose header is `header`; without one its id.
std::u16string_view titleOfTask(const document::kdzero::Node& header) noexcept;

/// Returns how many lines the task has.
std::uint64_t linesOfTask(const document::kdzero::Node& header) noexcept;

/// Appends the begin of the card of a task that starts at line `line` of the file numbered `file`:
/// heading, number of lines, settings. The card is closed if the task is collapsed.
void beginTaskCard(HtmlText& html, const document::kdzero::Node& header, std::uint64_t file,
                   std::uint64_t line);

}  // namespace tessera::html
