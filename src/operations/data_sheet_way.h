#pragma once

#include <string_view>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/drivers.h"
#include "hardware/board.h"
#include "hardware/chip_bus.h"
#include "operations/failure_reports.h"

namespace kestrel::operations {

/// Programming and erasing by the data sheets: the driver of the device does it, the reports are
/// those of the classic procedures.
class DataSheetWay {
 public:
  DataSheetWay(const SelectionState& device, LatchState& latches, OperationState& operation,
               Controls& controls, Reporting& reporting, hardware::Board& board,
               hardware::ChipBus& bus, const data_sheet::Drivers& drivers, FailureReports& reports)
      : device_(device),
        latches_(latches),
        operation_(operation),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        bus_(bus),
        drivers_(drivers),
        reports_(reports) {}

  /// True when the selected device is worked on by its data sheet.
  [[nodiscard]] bool isChosen() const { return drivers_.areChosen(); }

  /// ProgramBuffer into the chip; a failure is reported and stands in ProgramFailed.
  void program();

  /// Every byte of the chip FFh, and the report.
  void erase();

 private:
  void report(std::string_view what, const data_sheet::Outcome& outcome);
  void reportErased();

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  hardware::ChipBus& bus_;
  const data_sheet::Drivers& drivers_;
  FailureReports& reports_;
};

}  // namespace kestrel::operations
