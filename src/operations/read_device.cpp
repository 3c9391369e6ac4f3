#include "operations/read_device.h"

#include <string>

#include "buffers/checksum.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {

ReadDevice::ReadDevice(const OperationParts& parts, hardware::ErrorAlert& alert,
                       display::MemoryDisplay& display, SerialEeprom& serial,
                       FailureReports& reports, Dialogs& dialogs)
    : p_(parts),
      alert_(alert),
      display_(display),
      serial_(serial),
      reports_(reports),
      dialogs_(dialogs),
      walk_(parts) {}

void ReadDevice::Read_button_Click() {
  if (p_.controls.CheckCode.isTicked()) ReadCode();
  if (p_.controls.CheckData.isTicked()) ReadData();
}

void ReadDevice::ReadCode() {
  const ProgrammerState& s = p_.state;
  if (s.FamilyLetter == "F" || s.FamilyLetter == "P" || s.FamilyCode == "EN") {
    ReadParallel();
  } else if (s.FamilyLetter == "S") {
    ReadSerial();
  } else {
    dialogs_.messageBox(
        {.text = "Please Write Missing Routines at READCODE", .title = "Routine Not Ready"});
  }
}

void ReadDevice::ReadParallel() {
  ProgrammerState& s = p_.state;
  p_.lamps.DataFlowLampOn();
  s.DeviceChecksum = 0;
  s.DisplayMode = "Read";
  walk_.begin();
  p_.controls.ProgressBar1.setValue(0);
  p_.controls.ProgressBar1.setMaximum(s.CodeLength / 256);
  walk_.readAll([&s](std::int32_t) {
    // The bytes are stored one after the other, whatever address they were read from.
    at(s.CodeBuffer, s.LinearAddress) = s.ReadByte;
    s.DeviceChecksum = buffers::addToChecksum(s.DeviceChecksum, s.ReadByte);
    ++s.LinearAddress;
    return true;
  });
  s.DeviceChecksumText = buffers::checksumText(s.DeviceChecksum);
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage(std::to_string(s.CodeLength) + " bytes Read from Device");
  p_.reporting.LogMessage("Device CHKSUMM = $" + s.DeviceChecksumText);
  showBuffer();
  finishReading();
  p_.reporting.PlaySoundEvent("OK");
  p_.bus.Reset();
}

void ReadDevice::showBuffer() {
  p_.controls.VScroll1.setMaximum(p_.state.CodeLength / 256 - 1);
  p_.reporting.LogMessage("Data is available at above Window, use Scroll Bar");
  p_.reporting.LogMessage("You can Save the file using [FILE - Save As] menu");
  display_.DisplayPageMemory();
}

void ReadDevice::finishReading() {
  Controls& c = p_.controls;
  c.ProgressBar1.setValue(0);
  c.StatusBar.setText("");
  for (Button* const button :
       {&c.Verify_button, &c.menuVerifyCode, &c.Program_button, &c.menuProgramCode, &c.Erase_button,
        &c.menuEraseCode, &c.mnuFileSaveCodeAs}) {
    alert_.enable(*button);
  }
  p_.state.CodeBufferValid = 1;
}

void ReadDevice::ReadSerial() {
  ProgrammerState& s = p_.state;
  p_.lamps.DataFlowLampOn();
  p_.bus.Reset();
  p_.bus.SETADR();
  p_.bus.sleepMs(kStartWaitMs);
  s.DisplayMode = "Read";
  p_.controls.ProgressBar1.setMaximum(s.CodeLength);
  serial_.Read24CXX();
  p_.lamps.DataFlowLampOff();
  if (s.I2CError != 0) {
    reports_.AckErrorReport();
  } else {
    p_.reporting.LogMessage(std::to_string(s.CodeLength) + " bytes Read from Device");
    showBuffer();
    p_.reporting.PlaySoundEvent("OK");
  }
  finishReading();
  p_.bus.Reset();
  p_.bus.CEON();
  p_.bus.OEON();
  s.RegShadow0 = hardware::kLatch0Idle;  // the shadow alone: latch 0 itself keeps /OE low
  s.RegShadow1 = 0;
  s.RegShadow2 = 0;
  p_.registers.SetReg1();
  p_.registers.SetReg2();
}

void ReadDevice::ReadData() {
  p_.state.DisplayMode = "Read";
  p_.registers.REG4OFF();
  p_.bus.CEOEON();
  p_.lamps.DataFlowLampOn();
  p_.state.ProgressStep = narrowed<std::int16_t>(p_.state.CodeLength / 100);
  p_.reporting.LogMessage("Start Device Reading Operation");
  p_.controls.StatusBar.setText("Reading Device... Wait");
  dialogs_.messageBox(
      {.text = "Please Write AT90S2313 Eeprom Read Routine", .title = "Routine Not Ready"});
}

}  // namespace kestrel::operations
