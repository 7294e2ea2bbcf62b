#pragma once

#include "tessera/commandline/Arguments.hpp"
#include "tessera/commands/Options.hpp"

namespace tessera::commands {

// What the arguments of a command say. Values that cannot be used throw ProblemError.

ParseOptions readParseOptions(const commandline::Arguments& arguments);
CheckOptions readCheckOptions(const commandline::Arguments& arguments);
MarkersOptions readMarkersOptions(const commandline::Arguments& arguments);
ExplainOptions readExplainOptions(const commandline::Arguments& arguments);
NewBundleOptions readNewBundleOptions(const commandline::Arguments& arguments);
ReplayOptions readReplayOptions(const commandline::Arguments& arguments);
ViewOptions readViewOptions(const commandline::Arguments& arguments);
DoctorOptions readDoctorOptions(const commandline::Arguments& arguments);

}  // namespace tessera::commands
