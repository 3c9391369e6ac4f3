#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "operations/failure_reports.h"
#include "operations/flash_identification.h"
#include "platform/screen.h"

namespace kestrel::operations {

/// 32-pin flash: the frame of its programming. The byte write and the chip erase are hooks that do
/// nothing in this release, so programming succeeds where the chip already holds the bytes.
class FlashProgrammer {
 public:
  FlashProgrammer(const BufferState& buffers, const SelectionState& device, LatchState& latches,
                  OperationState& operation, ShellState& shell, Controls& controls,
                  Reporting& reporting, hardware::Board& board, FlashIdentification& identification,
                  FailureReports& reports, Screen& screen)
      : buffers_(buffers),
        device_(device),
        latches_(latches),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        identification_(identification),
        reports_(reports),
        screen_(screen) {}

  void ProgramFlash();

  /// One read-back poll of the address on the pins.
  void FlashPollByte();

  void FlashWriteByte() {}
  void FlashChipErase() {}
  void FlashChipEraseAtmel() {}

  /// "LoopFlashTest": a timing loop of the slider's value x 1000 rounds.
  void LoopFlashTest_Click();

 private:
  [[nodiscard]] bool hasKnownMaker() const;
  bool programPage();
  bool programByte();

  const BufferState& buffers_;
  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  FlashIdentification& identification_;
  FailureReports& reports_;
  Screen& screen_;
};

}  // namespace kestrel::operations
