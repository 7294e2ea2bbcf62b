#include "oracle/support/LogRecorder.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace quenlith::oracle {

using shared::logging::kTraceSeverity;

LogRecorder::LogRecorder(World& world)
    : collector(world.getPlan().logging ? kTraceSeverity : 0U,
                [&world](std::uint32_t severity, std::string_view message) {
                  const bool isExpected = severity == kTraceSeverity;
                  world.log((isExpected ? "" : "severity " + std::to_string(severity) + ' ') +
                            std::string(message));
                }) {}

}  // namespace quenlith::oracle
