#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/bus_primitives.h"
#include "hardware/lamps.h"
#include "hardware/registers.h"

namespace kestrel::operations {

/// What every device operation works with: the record, the form, the reports and the board.
struct OperationParts {
  ProgrammerState& state;
  Controls& controls;
  Reporting& reporting;
  hardware::Lamps& lamps;
  hardware::Registers& registers;
  hardware::BusPrimitives& bus;
};

/// Wait between the start address on the pins and the first access, for the chip's supply.
inline constexpr std::int32_t kStartWaitMs = 500;

}  // namespace kestrel::operations
