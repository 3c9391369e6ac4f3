#include "operations/erase_chip.h"

namespace kestrel::operations {

void EraseChip::EraseFlash_button_Click() {
  const DeviceOperation operation = board_.operation();
  if (dataSheet_.isChosen()) return dataSheet_.erase();
  operation_.EraseMode = 1;
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  for (const devices::EraseRoutine routine : family.erase) routines_.run(routine);
  if (family.bus == devices::BusKind::Serial) finishSerial();
}

void EraseChip::finishSerial() {
  if (operation_.I2CError != 0) {
    reports_.AckErrorReport();
    operation_.ProgramFailed = 1;
    return;
  }
  reporting_.LogMessage("Programming Device Successfull");
  board_.lamps.ProgramLampOff();
  board_.lamps.DataFlowLampOff();
  reporting_.PlaySoundEvent("OK");
  latches_.RegShadow0 = hardware::kLatch0Idle;
  board_.registers.SetReg0();
  controls_.ProgressBar1.setValue(0);
  board_.leaveSerialChip();
}

}  // namespace kestrel::operations
