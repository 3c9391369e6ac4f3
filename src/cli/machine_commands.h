#pragma once

#include "cli/arguments.h"

namespace kestrel::cli {

// The commands that need no form: nothing is started up for them and no board is looked for.

/// Prints the catalogue, its short names, or what is known of the device of -d.
[[nodiscard]] int listDevices(const Arguments& arguments);

/// Prints the four setups of the working folder. Returns kBadUsage when one cannot be read.
[[nodiscard]] int listSetups(const Arguments& arguments);

/// Switches the board's voltages off, whatever its model. Returns kNoBoard without a port.
[[nodiscard]] int switchOff(const Arguments& arguments);

}  // namespace kestrel::cli
