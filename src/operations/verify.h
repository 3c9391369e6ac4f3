#pragma once

#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "operations/operation_parts.h"
#include "operations/program_image.h"
#include "operations/serial_eeprom.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// Compares the chip with the image that programming would write.
class Verify {
 public:
  Verify(const OperationParts& parts, ProgramImage& image, SerialEeprom& serial,
         FailureReports& reports, Dialogs& dialogs);

  /// Verify_button: the memories that CheckCode and CheckData select.
  void Verify_button_Click();

  void VerifyCode();
  void VerifyData();

 private:
  [[nodiscard]] bool isSerial() const;
  bool verifyParallel();
  void reportMatch();

  OperationParts p_;
  ProgramImage& image_;
  SerialEeprom& serial_;
  FailureReports& reports_;
  Dialogs& dialogs_;
  DeviceWalk walk_;
};

}  // namespace kestrel::operations
