#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "devices/families.h"
#include "hardware/board.h"
#include "hardware/error_alert.h"
#include "operations/blank_check.h"
#include "operations/data_sheet_way.h"
#include "operations/failure_reports.h"
#include "operations/image_check.h"
#include "operations/program_image.h"
#include "operations/routines.h"
#include "operations/verify.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// Writes the code buffer into the chip: whether it can take it, the safety question, the blank
/// check, the image by byte lane, the routine of the device's family, the verify.
class ProgramCommand {
 public:
  ProgramCommand(const SelectionState& device, const BufferState& buffers, LatchState& latches,
                 OperationState& operation, ShellState& shell, Controls& controls,
                 Reporting& reporting, hardware::Board& board, hardware::ErrorAlert& alert,
                 ProgramImage& image, FailureReports& reports, ImageCheck& check, BlankCheck& blank,
                 Verify& verify, Routines& routines, DataSheetWay& dataSheet, Dialogs& dialogs)
      : device_(device),
        buffers_(buffers),
        latches_(latches),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        alert_(alert),
        image_(image),
        reports_(reports),
        check_(check),
        blank_(blank),
        verify_(verify),
        routines_(routines),
        dataSheet_(dataSheet),
        dialogs_(dialogs) {}

  void Program_button_Click();
  void ProgramCode();
  void ProgramData();

 private:
  [[nodiscard]] bool isConfirmed(const std::optional<ImageCheck::Result>& check);
  void noteUnconfirmed(const std::optional<ImageCheck::Result>& check);
  void programDevice(const devices::Family& family);
  void dispatch(const devices::Family& family);
  void reportOutcome();
  void leaveIdle(const devices::Family& family);

  const SelectionState& device_;
  const BufferState& buffers_;
  LatchState& latches_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  hardware::ErrorAlert& alert_;
  ProgramImage& image_;
  FailureReports& reports_;
  ImageCheck& check_;
  BlankCheck& blank_;
  Verify& verify_;
  Routines& routines_;
  DataSheetWay& dataSheet_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::operations
