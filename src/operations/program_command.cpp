#include "operations/program_command.h"

#include <string_view>

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int16_t kNoRoutine = 9;
constexpr std::int16_t kRoutineCalled = 1;

}  // namespace

void ProgramCommand::Program_button_Click() {
  p_.controls.VScroll1.setValue(0);
  p_.state.LinearAddress = 0;
  p_.bus.Endereco2Adr();
  if (p_.controls.CheckCode.isTicked()) ProgramCode();
  if (p_.controls.CheckData.isTicked()) ProgramData();
}

void ProgramCommand::ProgramData() {
  u_.dialogs.messageBox({.text = "Please Write A90S2313 Program Data Routine"});
}

bool ProgramCommand::isConfirmed() {
  return u_.dialogs.messageBox({.text = "Program the Device?",
                                .title = "Safety Question",
                                .icon = MessageIcon::Question,
                                .buttons = MessageButtons::OkCancel,
                                .defaultAnswer = Answer::Cancel}) == Answer::Ok;
}

void ProgramCommand::ProgramCode() {
  p_.reporting.LogMessage("Programming Button Pressed");
  if (!isConfirmed()) {
    p_.reporting.LogMessage("Programming was Canceled by Operator");
  } else if (!u_.alert.isRaised()) {
    const bool isSerial = p_.state.FamilyLetter == "S";
    if (p_.controls.CheckBlankPriorProgramming.isTicked() && !isSerial) u_.blank.BlankCode();
    if (!u_.alert.isRaised()) programDevice();
  }
  leaveIdle();
}

void ProgramCommand::programDevice() {
  ProgrammerState& s = p_.state;
  u_.image.PrepareProgramBuffer();
  p_.bus.Reset();
  p_.bus.SETADR();
  p_.bus.sleepMs(kStartWaitMs);
  s.ProgressStep = narrowed<std::int16_t>(s.ProgramLength / 99);
  s.ProgressCount = 0;
  p_.controls.ProgressBar1.setValue(0);
  p_.lamps.DataFlowLampOn();
  p_.lamps.ProgramLampOn();
  s.ProgramFailed = 0;
  s.ProgramStatus = kNoRoutine;
  dispatch();
  if (s.FamilyLetter == "S" && s.I2CError != 0) {
    u_.reports.AckErrorReport();
    s.ProgramFailed = 1;
  }
  reportOutcome();
  s.RegShadow0 = hardware::kLatch0Idle;
  p_.registers.SetReg0();
  p_.controls.ProgressBar1.setValue(0);
  if (p_.controls.VerifyAfterProgramming.isTicked() && s.ProgramFailed == 0) {
    u_.verify.Verify_button_Click();
  }
}

void ProgramCommand::dispatch() {
  const auto onCode = [this](std::string_view code, auto& unit, auto routine) {
    if (p_.state.FamilyCode != code) return;
    p_.state.ProgramStatus = kRoutineCalled;
    (unit.*routine)();
  };
  onCode("P1", u_.eprom, &EpromProgrammer::P2732);
  onCode("P2", u_.eprom, &EpromProgrammer::P2764_128);
  onCode("P3", u_.eprom, &EpromProgrammer::P2764_128);
  onCode("P4", u_.eprom, &EpromProgrammer::P27256_040);
  onCode("P5", u_.eprom, &EpromProgrammer::P27080);
  onCode("P6", u_.eprom, &EpromProgrammer::P27010_020);
  onCode("P7", u_.eprom, &EpromProgrammer::P27010_020);
  onCode("P8", u_.eprom, &EpromProgrammer::P27256_040);
  onCode("P9", u_.eprom, &EpromProgrammer::P27080);
  onCode("EN", u_.pages, &PageWriter::ProgramX28C256);
  onCode("FA", u_.pages, &PageWriter::ProgramAT29C256);
  for (const char* const code : {"FM", "FL", "FR", "FS"}) {
    onCode(code, u_.flash, &FlashProgrammer::ProgramFlash);
  }
  onCode("SA", u_.serial, &SerialEeprom::Write24CXX);
  onCode("SB", u_.serial, &SerialEeprom::Write24CXX);
  onCode("SC", u_.serial, &SerialEeprom::Write24C32);
}

void ProgramCommand::reportOutcome() {
  const ProgrammerState& s = p_.state;
  if (s.ProgramFailed == 0 && s.ProgramStatus == kRoutineCalled) {
    p_.reporting.LogMessage("Programming Device Successfull");
    p_.lamps.DataFlowLampOff();
    p_.lamps.ProgramLampOff();
    p_.reporting.PlaySoundEvent("OK");
  }
  if (s.ProgramStatus == kNoRoutine) {
    p_.reporting.LogMessage("Device Not Supported - Status 9 - Please Report");
    p_.reporting.PlaySoundEvent("ERROR");
  }
}

// A serial chip is left with the bus at rest and its supply off, so that it can be taken out.
void ProgramCommand::leaveIdle() {
  if (p_.state.FamilyLetter != "S") {
    p_.bus.Reset();
    return;
  }
  p_.bus.CEON();
  p_.bus.OEON();
  p_.state.RegShadow1 = 0;
  p_.state.RegShadow2 = 0;
  p_.registers.SetReg1();
  p_.registers.SetReg2();
}

}  // namespace kestrel::operations
