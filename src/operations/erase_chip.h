#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "operations/data_sheet_way.h"
#include "operations/failure_reports.h"
#include "operations/routines.h"

namespace kestrel::operations {

/// "Erase Chip", by the family of the device.
class EraseChip {
 public:
  EraseChip(const SelectionState& device, LatchState& latches, OperationState& operation,
            Controls& controls, Reporting& reporting, hardware::Board& board, Routines& routines,
            FailureReports& reports, DataSheetWay& dataSheet)
      : device_(device),
        latches_(latches),
        operation_(operation),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        routines_(routines),
        reports_(reports),
        dataSheet_(dataSheet) {}

  void EraseFlash_button_Click();

 private:
  void finishSerial();

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  Routines& routines_;
  FailureReports& reports_;
  DataSheetWay& dataSheet_;
};

}  // namespace kestrel::operations
