#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// Looks for the first byte of the chip that is not FFh, the erased state.
class BlankCheck {
 public:
  BlankCheck(const SelectionState& device, const BufferState& buffers, LatchState& latches,
             OperationState& operation, ShellState& shell, Controls& controls, Reporting& reporting,
             hardware::Board& board, FailureReports& reports, DeviceWalk& walk, Dialogs& dialogs)
      : device_(device),
        buffers_(buffers),
        latches_(latches),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        reports_(reports),
        walk_(walk),
        dialogs_(dialogs) {}

  /// Blank_button: the memories that CheckCode and CheckData select.
  void Blank_button_Click();

  void BlankCode();
  void BlankData();
  void BlankCheckParallel();

 private:
  const SelectionState& device_;
  const BufferState& buffers_;
  LatchState& latches_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  FailureReports& reports_;
  DeviceWalk& walk_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::operations
