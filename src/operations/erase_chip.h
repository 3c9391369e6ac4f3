#pragma once

#include "operations/failure_reports.h"
#include "operations/flash_programmer.h"
#include "operations/operation_parts.h"
#include "operations/page_writer.h"
#include "operations/serial_eeprom.h"

namespace kestrel::operations {

/// "Erase Chip", by the family of the device.
class EraseChip {
 public:
  EraseChip(const OperationParts& parts, PageWriter& pages, FlashProgrammer& flash,
            SerialEeprom& serial, FailureReports& reports)
      : p_(parts), pages_(pages), flash_(flash), serial_(serial), reports_(reports) {}

  void EraseFlash_button_Click();

 private:
  void finishSerial();

  OperationParts p_;
  PageWriter& pages_;
  FlashProgrammer& flash_;
  SerialEeprom& serial_;
  FailureReports& reports_;
};

}  // namespace kestrel::operations
