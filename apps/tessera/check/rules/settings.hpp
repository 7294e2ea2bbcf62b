#pragma once

#include <span>
#include <string_view>

#include "tessera/check/rules/Findings.hpp"
#include "tessera/check/scan/FoundMarker.hpp"

namespace tessera::check::rules {

/// Returns the keys that the task parser reads from an entry.
std::span<const std::u16string_view> knownSettings() noexcept;

/// Returns whether the task parser reads all settings of `entry`.
bool hasKnownSettings(const scan::FoundMarker& entry);

/// Reports the settings of a task entry that the parser ignores.
void checkSettings(const scan::FoundMarker& entry, Findings& findings);

}  // namespace tessera::check::rules
