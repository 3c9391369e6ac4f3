#include "operations/erase_chip.h"

namespace kestrel::operations {

// A 24C16 is written by both serial writers; this is intended.
void EraseChip::EraseFlash_button_Click() {
  p_.state.EraseMode = 1;
  const std::string& code = p_.state.FamilyCode;
  if (code == "EN") pages_.EraseX28C256();
  if (code == "FM" || code == "FL" || code == "FR" || code == "FS") flash_.FlashChipErase();
  if (code == "FA") flash_.FlashChipEraseAtmel();
  if (code == "SA" || code == "SB") serial_.Write24CXX();
  if (code == "SB" || code == "SC") serial_.Write24C32();
  if (p_.state.FamilyLetter == "S") finishSerial();
}

void EraseChip::finishSerial() {
  ProgrammerState& s = p_.state;
  if (s.I2CError != 0) {
    reports_.AckErrorReport();
    s.ProgramFailed = 1;
    return;
  }
  p_.reporting.LogMessage("Programming Device Successfull");
  p_.lamps.ProgramLampOff();
  p_.lamps.DataFlowLampOff();
  p_.reporting.PlaySoundEvent("OK");
  s.RegShadow0 = hardware::kLatch0Idle;
  p_.registers.SetReg0();
  p_.controls.ProgressBar1.setValue(0);
  p_.bus.CEON();
  p_.bus.OEON();
  s.RegShadow1 = 0;
  s.RegShadow2 = 0;
  p_.registers.SetReg1();
  p_.registers.SetReg2();
}

}  // namespace kestrel::operations
