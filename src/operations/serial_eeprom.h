#pragma once

#include <functional>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "operations/failure_reports.h"
#include "operations/i2c_bus.h"

namespace kestrel::operations {

/// The 24Cxx chips: pages and addresses over the two-wire bus. A missing acknowledge ends a
/// procedure at once with I2CError set and no stop condition; the caller reports it.
class SerialEeprom {
 public:
  SerialEeprom(const SelectionState& device, LatchState& latches, BufferState& buffers,
               OperationState& operation, Controls& controls, Reporting& reporting,
               hardware::Board& board, FailureReports& reports)
      : device_(device),
        latches_(latches),
        buffers_(buffers),
        operation_(operation),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        reports_(reports),
        i2c_(latches, operation, board) {}

  /// 24C08 and 24C16: pages of 16 bytes from 300h on, one address byte, the block in the select
  /// byte. With EraseMode FFh instead of the code buffer.
  void Write24CXX();

  /// 24C32 and larger: the family's pages from 0 on, two address bytes.
  void Write24C32();

  /// CodeLength bytes into the code buffer.
  void Read24CXX();

  /// CodeLength bytes against the code buffer; the first difference is reported.
  void Verify24CXX();

 private:
  struct Writer;

  void write(const Writer& writer);
  bool writePage(const Writer& writer, std::int32_t& address);
  void waitForWriteCycle(std::uint8_t select);
  bool send(int byte);
  bool startReading();

  /// Reads CodeLength bytes; the visit sees each in ReadByte and ends the reading with false.
  void readAll(const std::function<bool(std::int32_t index)>& visit);

  const SelectionState& device_;
  LatchState& latches_;
  BufferState& buffers_;
  OperationState& operation_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  FailureReports& reports_;
  I2cBus i2c_;
};

}  // namespace kestrel::operations
