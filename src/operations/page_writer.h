#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "devices/page_write_pins.h"
#include "hardware/board.h"
#include "operations/failure_reports.h"
#include "operations/program_image.h"
#include "operations/protection.h"

namespace kestrel::operations {

/// The 32 KB chips that are written a page of 64 bytes at a time: each page is written, given its
/// write cycle, read back, and written again whole until it is right, at most 79 times.
class PageWriter {
 public:
  PageWriter(const SelectionState& device, LatchState& latches, OperationState& operation,
             ShellState& shell, Controls& controls, Reporting& reporting, hardware::Board& board,
             ProtectionSequences& protection, ProgramImage& image, FailureReports& reports)
      : device_(device),
        latches_(latches),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        protection_(protection),
        image_(image),
        reports_(reports) {}

  void ProgramAT29C256();
  void ProgramX28C256();

  /// Programs FFh; the program image is rebuilt from the code buffer afterwards.
  void EraseX28C256();

 private:
  /// The chip's supply is given time to come up, and the start reported.
  template <typename SetAddress>
  void begin(const char* message, const SetAddress& setAddress);
  void endUnlock(std::int32_t waitMs);
  bool programPages(const devices::PageWritePins& pins);
  bool programPage(const devices::PageWritePins& pins, std::int32_t page);
  void latchPageAddress(const devices::PageWritePins& pins, std::int32_t page);
  void loadPage(const devices::PageWritePins& pins, std::int32_t page);
  bool pageReadsBack(std::int32_t page);
  void setByteAddress(std::int32_t address);
  void finish(const char* message);

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  ProtectionSequences& protection_;
  ProgramImage& image_;
  FailureReports& reports_;
};

}  // namespace kestrel::operations
