#include "operations/verify.h"

#include "buffers/checksum.h"
#include "devices/families.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {

void Verify::Verify_button_Click() {
  operation_.VerifyFailed = 0;
  if (controls_.CheckCode.isTicked()) VerifyCode();
  if (controls_.CheckData.isTicked()) VerifyData();
}

void Verify::VerifyData() {
  reporting_.noteEnding(Ending::NoRoutine, "there is no routine that verifies the data memory");
  dialogs_.messageBox({.text = "Please Write AT90S2313 VerifyData Routine"});
}

void Verify::VerifyCode() {
  const DeviceOperation operation = board_.operation();
  buffers_.DeviceChecksum = 0;
  controls_.Verify_button.setColour(Colour::Highlight);
  board_.lamps.DataFlowLampOn();
  reporting_.LogMessage("Verify Function Started... Wait");
  const bool isSerial = devices::familyOf(device_.FamilyCode).verify == devices::BusKind::Serial;
  if (isSerial && !walk_.isByDataSheet()) {
    serial_.Verify24CXX();
    if (operation_.I2CError != 0) {
      reports_.AckErrorReport();
      controls_.Verify_button.setColour(Colour::ButtonFace);
      return;
    }
  } else if (!verifyParallel()) {
    reportDifference();
    return;
  }
  if (operation_.VerifyFailed == 0) reportMatch();
  controls_.Verify_button.setColour(Colour::ButtonFace);
}

bool Verify::verifyParallel() {
  image_.PrepareProgramBuffer();
  shell_.ProgressStep = narrowed<std::int16_t>(device_.DeviceSizeBytes / 99);
  shell_.ProgressCount = 0;
  walk_.begin();
  controls_.ProgressBar1.setMaximum(buffers_.CodeLength / 256);
  return walk_.readAll([this](std::int32_t) {
    buffers_.DeviceChecksum = buffers::addToChecksum(buffers_.DeviceChecksum, latches_.ReadByte);
    if (latches_.ReadByte != at(operation_.ProgramBuffer, latches_.LinearAddress)) {
      operation_.ProgramIndex = latches_.LinearAddress;
      return false;
    }
    ++latches_.LinearAddress;
    return true;
  });
}

void Verify::reportDifference() {
  if (walk_.outcome().isDone()) return reports_.VerifyMismatchReport();
  operation_.VerifyFailed = 1;
  reports_.ChipUnreadableReport(walk_.outcome());
  controls_.Verify_button.setColour(Colour::ButtonFace);
}

void Verify::reportMatch() {
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage("Device Contents MATCHES with Buffer Contents");
  buffers_.DeviceChecksumText = buffers::checksumText(buffers_.DeviceChecksum);
  reporting_.LogMessage("Device CHKSUMM = $" + buffers_.DeviceChecksumText);
  reporting_.PlaySoundEvent("OK");
  board_.bus.Reset();
}

}  // namespace kestrel::operations
