#include "tessera/reports/placeOf.hpp"

#include "tessera/diagnostics/terminalText.hpp"

namespace tessera::reports {

std::string placeOf(const check::catalogue::CheckedFile& file,
                    const check::catalogue::Position& position) {
  const auto before = file.lines.countCharactersBefore(position.line, position.unit);
  return diagnostics::terminalText(file.path) + ':' + std::to_string(position.line) + ':' +
         std::to_string(before + 1);
}

}  // namespace tessera::reports
