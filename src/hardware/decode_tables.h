#pragma once

#include "app/state/programmer_state.h"

namespace kestrel::hardware {

/// Start-up tables: the status-port decoding of each board family, the identity address maps and
/// the characters that the hex/ASCII display shows as themselves.
void BuildDecodeTables(LatchState& latches, SelectionState& device, ShellState& shell);

/// Both address maps: entry i = i.
void resetAddressMaps(SelectionState& device);

}  // namespace kestrel::hardware
