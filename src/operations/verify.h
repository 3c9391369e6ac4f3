#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "operations/program_image.h"
#include "operations/serial_eeprom.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// Compares the chip with the image that programming would write.
class Verify {
 public:
  Verify(const SelectionState& device, LatchState& latches, BufferState& buffers,
         OperationState& operation, ShellState& shell, Controls& controls, Reporting& reporting,
         hardware::Board& board, ProgramImage& image, SerialEeprom& serial, DeviceWalk& walk,
         FailureReports& reports, Dialogs& dialogs)
      : device_(device),
        latches_(latches),
        buffers_(buffers),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        image_(image),
        serial_(serial),
        walk_(walk),
        reports_(reports),
        dialogs_(dialogs) {}

  /// Verify_button: the memories that CheckCode and CheckData select.
  void Verify_button_Click();

  void VerifyCode();
  void VerifyData();

 private:
  bool verifyParallel();
  void reportDifference();
  void reportMatch();

  const SelectionState& device_;
  LatchState& latches_;
  BufferState& buffers_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  ProgramImage& image_;
  SerialEeprom& serial_;
  DeviceWalk& walk_;
  FailureReports& reports_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::operations
