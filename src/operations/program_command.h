#pragma once

#include "hardware/error_alert.h"
#include "operations/blank_check.h"
#include "operations/eprom_programmer.h"
#include "operations/failure_reports.h"
#include "operations/flash_programmer.h"
#include "operations/operation_parts.h"
#include "operations/page_writer.h"
#include "operations/program_image.h"
#include "operations/serial_eeprom.h"
#include "operations/verify.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// The units that the Program command puts together.
struct ProgramUnits {
  ProgramImage& image;
  hardware::ErrorAlert& alert;
  FailureReports& reports;
  BlankCheck& blank;
  Verify& verify;
  EpromProgrammer& eprom;
  PageWriter& pages;
  FlashProgrammer& flash;
  SerialEeprom& serial;
  Dialogs& dialogs;
};

/// Writes the code buffer into the chip: the safety question, the blank check, the image by byte
/// lane, the routine of the device's family, the verify.
class ProgramCommand {
 public:
  ProgramCommand(const OperationParts& parts, const ProgramUnits& units) : p_(parts), u_(units) {}

  void Program_button_Click();
  void ProgramCode();
  void ProgramData();

 private:
  [[nodiscard]] bool isConfirmed();
  void programDevice();
  void dispatch();
  void reportOutcome();
  void leaveIdle();

  OperationParts p_;
  ProgramUnits u_;
};

}  // namespace kestrel::operations
