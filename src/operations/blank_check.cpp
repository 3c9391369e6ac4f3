#include "operations/blank_check.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int64_t kPauseCounts = 100;

}  // namespace

void BlankCheck::Blank_button_Click() {
  if (p_.controls.CheckCode.isTicked()) BlankCode();
  if (p_.controls.CheckData.isTicked()) BlankData();
}

void BlankCheck::BlankCode() {
  const ProgrammerState& s = p_.state;
  if (s.FamilyLetter == "F" || s.FamilyLetter == "P" || s.FamilyCode == "EN") {
    BlankCheckParallel();
  } else {
    dialogs_.messageBox(
        {.text = "Please Write Missing Routines at BLANKCODE", .title = "Missing Routine"});
  }
}

void BlankCheck::BlankData() {
  dialogs_.messageBox(
      {.text = "Please Write AT90S2313 Check Blank Eeprom Routine", .title = "Routine Not Ready"});
}

void BlankCheck::BlankCheckParallel() {
  ProgrammerState& s = p_.state;
  p_.lamps.DataFlowLampOn();
  p_.reporting.LogMessage("Checking Device for BLANK (Erased)... Wait");
  s.ProgressStep = narrowed<std::int16_t>(s.CodeLength / 100);
  s.ProgressCount = 0;
  walk_.begin();
  p_.controls.ProgressBar1.setValue(0);
  p_.controls.ProgressBar1.setMaximum(s.CodeLength / 256);
  p_.bus.spin(kPauseCounts);
  const bool isBlank = walk_.readAll([&s](std::int32_t address) {
    if (s.ReadByte == kErased) return true;
    s.ProgramIndex = address;
    return false;
  });
  if (!isBlank) {
    reports_.NotBlankReport();
    return;
  }
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage("Device IS BLANK (ERASED)");
  p_.controls.ProgressBar1.setValue(0);
  p_.reporting.PlaySoundEvent("OK");
  p_.bus.Reset();
}

}  // namespace kestrel::operations
