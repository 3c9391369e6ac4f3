#include "operations/blank_check.h"

#include "devices/remarks.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int64_t kPauseCounts = 100;

}  // namespace

void BlankCheck::Blank_button_Click() {
  if (controls_.CheckCode.isTicked()) BlankCode();
  if (controls_.CheckData.isTicked()) BlankData();
}

void BlankCheck::BlankCode() {
  if (devices::familyOf(device_.FamilyCode).hasBlankCheck || walk_.isByDataSheet()) {
    BlankCheckParallel();
  } else {
    reporting_.noteEnding(
        Ending::NoRoutine,
        std::string(devices::whyNoBlankCheck(devices::familyOf(device_.FamilyCode))));
    dialogs_.messageBox(
        {.text = "Please Write Missing Routines at BLANKCODE", .title = "Missing Routine"});
  }
}

void BlankCheck::BlankData() {
  reporting_.noteEnding(Ending::NoRoutine, "there is no routine that blank-checks the data memory");
  dialogs_.messageBox(
      {.text = "Please Write AT90S2313 Check Blank Eeprom Routine", .title = "Routine Not Ready"});
}

void BlankCheck::BlankCheckParallel() {
  const DeviceOperation operation = board_.operation();
  board_.lamps.DataFlowLampOn();
  reporting_.LogMessage("Checking Device for BLANK (Erased)... Wait");
  shell_.ProgressStep = narrowed<std::int16_t>(buffers_.CodeLength / 100);
  shell_.ProgressCount = 0;
  walk_.begin();
  controls_.ProgressBar1.setValue(0);
  controls_.ProgressBar1.setMaximum(buffers_.CodeLength / 256);
  board_.bus.spin(kPauseCounts);
  const bool isBlank = walk_.readAll([this](std::int32_t address) {
    if (latches_.ReadByte == kErased) return true;
    operation_.ProgramIndex = address;
    return false;
  });
  if (!isBlank) {
    if (walk_.outcome().isDone()) {
      reports_.NotBlankReport();
    } else {
      reports_.ChipUnreadableReport(walk_.outcome());
    }
    return;
  }
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage("Device IS BLANK (ERASED)");
  controls_.ProgressBar1.setValue(0);
  reporting_.PlaySoundEvent("OK");
  board_.bus.Reset();
}

}  // namespace kestrel::operations
