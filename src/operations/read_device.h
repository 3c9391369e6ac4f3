#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "display/memory_display.h"
#include "hardware/board.h"
#include "hardware/error_alert.h"
#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "operations/read_vote.h"
#include "operations/serial_eeprom.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// The chip's contents into the code buffer.
class ReadDevice {
 public:
  ReadDevice(const SelectionState& device, LatchState& latches, BufferState& buffers,
             OperationState& operation, ShellState& shell, Controls& controls, Reporting& reporting,
             hardware::Board& board, hardware::ErrorAlert& alert, display::MemoryDisplay& display,
             SerialEeprom& serial, DeviceWalk& walk, FailureReports& reports, Dialogs& dialogs)
      : device_(device),
        latches_(latches),
        buffers_(buffers),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        alert_(alert),
        display_(display),
        serial_(serial),
        walk_(walk),
        reports_(reports),
        dialogs_(dialogs) {}

  /// Read_button: the memories that CheckCode and CheckData select.
  void Read_button_Click();

  /// By the kind of the device: parallel, serial, or a message that there is no routine.
  void ReadCode();
  void ReadParallel();
  void ReadSerial();

  /// The data memory of the microcontroller has no routine: announced, then a message.
  void ReadData();

 private:
  [[nodiscard]] bool readParallelOnce(std::vector<std::uint8_t>& read);
  [[nodiscard]] bool readSerialOnce();
  [[nodiscard]] bool vote(const std::function<bool()>& readOnce, std::vector<std::uint8_t>& bytes);
  void reportUnstable(const ReadVote& reads);
  void noteUniform();
  void showBuffer();
  void finishReading();

  const SelectionState& device_;
  LatchState& latches_;
  BufferState& buffers_;
  OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  hardware::ErrorAlert& alert_;
  display::MemoryDisplay& display_;
  SerialEeprom& serial_;
  DeviceWalk& walk_;
  FailureReports& reports_;
  Dialogs& dialogs_;
};

}  // namespace kestrel::operations
