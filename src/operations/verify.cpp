#include "operations/verify.h"

#include "buffers/checksum.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {

Verify::Verify(const OperationParts& parts, ProgramImage& image, SerialEeprom& serial,
               FailureReports& reports, Dialogs& dialogs)
    : p_(parts),
      image_(image),
      serial_(serial),
      reports_(reports),
      dialogs_(dialogs),
      walk_(parts) {}

void Verify::Verify_button_Click() {
  p_.state.VerifyFailed = 0;
  if (p_.controls.CheckCode.isTicked()) VerifyCode();
  if (p_.controls.CheckData.isTicked()) VerifyData();
}

void Verify::VerifyData() {
  dialogs_.messageBox({.text = "Please Write AT90S2313 VerifyData Routine"});
}

bool Verify::isSerial() const {
  const std::string& code = p_.state.FamilyCode;
  return code == "SA" || code == "SB" || code == "SC";
}

void Verify::VerifyCode() {
  p_.state.DeviceChecksum = 0;
  p_.controls.Verify_button.setColour(Colour::Highlight);
  p_.lamps.DataFlowLampOn();
  p_.reporting.LogMessage("Verify Function Started... Wait");
  if (isSerial()) {
    serial_.Verify24CXX();
    if (p_.state.I2CError != 0) {
      reports_.AckErrorReport();
      p_.controls.Verify_button.setColour(Colour::ButtonFace);
      return;
    }
  } else if (!verifyParallel()) {
    reports_.VerifyMismatchReport();
    return;
  }
  if (p_.state.VerifyFailed == 0) reportMatch();
  p_.controls.Verify_button.setColour(Colour::ButtonFace);
}

bool Verify::verifyParallel() {
  ProgrammerState& s = p_.state;
  image_.PrepareProgramBuffer();
  s.ProgressStep = narrowed<std::int16_t>(s.DeviceSizeBytes / 99);
  s.ProgressCount = 0;
  walk_.begin();
  p_.controls.ProgressBar1.setMaximum(s.CodeLength / 256);
  return walk_.readAll([&s](std::int32_t) {
    s.DeviceChecksum = buffers::addToChecksum(s.DeviceChecksum, s.ReadByte);
    if (s.ReadByte != at(s.ProgramBuffer, s.LinearAddress)) {
      s.ProgramIndex = s.LinearAddress;
      return false;
    }
    ++s.LinearAddress;
    return true;
  });
}

void Verify::reportMatch() {
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage("Device Contents MATCHES with Buffer Contents");
  p_.state.DeviceChecksumText = buffers::checksumText(p_.state.DeviceChecksum);
  p_.reporting.LogMessage("Device CHKSUMM = $" + p_.state.DeviceChecksumText);
  p_.reporting.PlaySoundEvent("OK");
  p_.bus.Reset();
}

}  // namespace kestrel::operations
