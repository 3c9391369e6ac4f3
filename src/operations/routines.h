#pragma once

#include "devices/families.h"
#include "operations/eprom_programmer.h"
#include "operations/flash_programmer.h"
#include "operations/page_writer.h"
#include "operations/serial_eeprom.h"

namespace kestrel::operations {

/// The routines of the device families, called by the names that the families' table gives them.
class Routines {
 public:
  Routines(EpromProgrammer& eprom, PageWriter& pages, FlashProgrammer& flash, SerialEeprom& serial)
      : eprom_(eprom), pages_(pages), flash_(flash), serial_(serial) {}

  /// False when there is none.
  bool run(devices::ProgramRoutine routine);
  void run(devices::EraseRoutine routine);

 private:
  EpromProgrammer& eprom_;
  PageWriter& pages_;
  FlashProgrammer& flash_;
  SerialEeprom& serial_;
};

}  // namespace kestrel::operations
