#pragma once

#include <string>
#include <string_view>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/chip_driver.h"
#include "hardware/board.h"
#include "hardware/error_alert.h"

namespace kestrel::operations {

/// What the operator sees when an operation fails. Each report raises the error alert.
class FailureReports {
 public:
  FailureReports(LatchState& latches, OperationState& operation, const BufferState& buffers,
                 Controls& controls, Reporting& reporting, hardware::Board& board,
                 hardware::ErrorAlert& alert)
      : latches_(latches),
        operation_(operation),
        buffers_(buffers),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        alert_(alert) {}

  /// The first byte that is not blank: ProgramIndex and ReadByte.
  void NotBlankReport();

  /// The first byte that differs: ProgramIndex and ReadByte, beside the byte of the code buffer.
  void VerifyMismatchReport();

  /// A serial chip that does not acknowledge.
  void AckErrorReport();

  /// A byte that does not program: LinearAddress, ByteToWrite and ReadByte. Takes the programming
  /// voltage off first.
  void ProgramFailureReport();

  /// Anything else that ended "Programming", "Erasing" or "Reading", in words.
  void ChipFailureReport(std::string_view what, Ending ending, const std::string& reason);

  /// A chip that could not be read: it does not answer.
  void ChipUnreadableReport(const data_sheet::Outcome& outcome);

 private:
  LatchState& latches_;
  OperationState& operation_;
  const BufferState& buffers_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  hardware::ErrorAlert& alert_;
};

}  // namespace kestrel::operations
