#pragma once

#include "display/memory_display.h"
#include "hardware/error_alert.h"
#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "operations/operation_parts.h"
#include "operations/serial_eeprom.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// The chip's contents into the code buffer.
class ReadDevice {
 public:
  ReadDevice(const OperationParts& parts, hardware::ErrorAlert& alert,
             display::MemoryDisplay& display, SerialEeprom& serial, FailureReports& reports,
             Dialogs& dialogs);

  /// Read_button: the memories that CheckCode and CheckData select.
  void Read_button_Click();

  /// By the kind of the device: parallel, serial, or a message that there is no routine.
  void ReadCode();
  void ReadParallel();
  void ReadSerial();

  /// The data memory of the microcontroller has no routine: announced, then a message.
  void ReadData();

 private:
  void showBuffer();
  void finishReading();

  OperationParts p_;
  hardware::ErrorAlert& alert_;
  display::MemoryDisplay& display_;
  SerialEeprom& serial_;
  FailureReports& reports_;
  Dialogs& dialogs_;
  DeviceWalk walk_;
};

}  // namespace kestrel::operations
