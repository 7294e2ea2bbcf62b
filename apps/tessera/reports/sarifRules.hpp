#pragma once

#include "foundation/json/Writer.hpp"

namespace tessera::reports {

/// Writes the catalogue as the array of rules of a SARIF tool component, in the order of its
/// entries.
void writeSarifRules(foundation::json::Writer& json);

}  // namespace tessera::reports
