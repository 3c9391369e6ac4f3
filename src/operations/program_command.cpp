#include "operations/program_command.h"

#include <utility>

#include "operations/programming_facts.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int16_t kNoRoutine = 9;
constexpr std::int16_t kRoutineCalled = 1;

}  // namespace

void ProgramCommand::Program_button_Click() {
  controls_.VScroll1.setValue(0);
  latches_.LinearAddress = 0;
  board_.bus.Endereco2Adr();
  if (controls_.CheckCode.isTicked()) ProgramCode();
  if (controls_.CheckData.isTicked()) ProgramData();
}

void ProgramCommand::ProgramData() {
  reporting_.noteEnding(Ending::NoRoutine, "there is no routine that programs the data memory");
  dialogs_.messageBox({.text = "Please Write A90S2313 Program Data Routine"});
}

bool ProgramCommand::isConfirmed(const std::optional<ImageCheck::Result>& check) {
  const Algorithms algorithms = dataSheet_.isChosen() ? Algorithms::DataSheet : Algorithms::Classic;
  std::vector<Fact> facts = programmingFacts(device_, buffers_, controls_, algorithms);
  if (check) facts.push_back(checkFact(*check));
  return dialogs_.messageBox({.text = "Program the Device?",
                              .title = "Safety Question",
                              .icon = MessageIcon::Question,
                              .buttons = MessageButtons::OkCancel,
                              .defaultAnswer = Answer::Cancel,
                              .facts = std::move(facts),
                              .cannotSucceed = check && !check->canBeProgrammed()}) == Answer::Ok;
}

void ProgramCommand::noteUnconfirmed(const std::optional<ImageCheck::Result>& check) {
  if (check && !check->canBeProgrammed()) {
    const auto first = narrowed<std::int32_t>(check->ranges.front().first);
    reporting_.noteEnding(Ending::Failed, checkFact(*check).text, first);
  } else {
    reporting_.noteEnding(Ending::Cancelled, "programming was not confirmed");
  }
}

void ProgramCommand::ProgramCode() {
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  reporting_.LogMessage("Programming Button Pressed");
  const std::optional<ImageCheck::Result> check = alert_.isRaised() ? std::nullopt : check_.run();
  if (!isConfirmed(check)) {
    noteUnconfirmed(check);
    reporting_.LogMessage("Programming was Canceled by Operator");
  } else if (alert_.isRaised()) {
    reporting_.noteEnding(Ending::Refused, "an error alert is up: dismiss it first");
  } else {
    const bool isSerial = family.bus == devices::BusKind::Serial;
    const bool canBeChecked = !isSerial || dataSheet_.isChosen();
    if (controls_.CheckBlankPriorProgramming.isTicked() && canBeChecked) blank_.BlankCode();
    if (!alert_.isRaised()) programDevice(family);
  }
  leaveIdle(family);
}

void ProgramCommand::programDevice(const devices::Family& family) {
  const DeviceOperation operation = board_.operation();
  image_.PrepareProgramBuffer();
  if (!dataSheet_.isChosen()) board_.startOperation();
  shell_.ProgressStep = narrowed<std::int16_t>(operation_.ProgramLength / 99);
  shell_.ProgressCount = 0;
  controls_.ProgressBar1.setValue(0);
  board_.lamps.DataFlowLampOn();
  board_.lamps.ProgramLampOn();
  operation_.ProgramFailed = 0;
  operation_.ProgramStatus = kNoRoutine;
  dispatch(family);
  if (family.bus == devices::BusKind::Serial && operation_.I2CError != 0) {
    reports_.AckErrorReport();
    operation_.ProgramFailed = 1;
  }
  reportOutcome();
  latches_.RegShadow0 = hardware::kLatch0Idle;
  board_.registers.SetReg0();
  controls_.ProgressBar1.setValue(0);
  if (controls_.VerifyAfterProgramming.isTicked() && operation_.ProgramFailed == 0) {
    verify_.Verify_button_Click();
  }
}

// The status says that a routine was called also when that ends by an error.
void ProgramCommand::dispatch(const devices::Family& family) {
  if (dataSheet_.isChosen()) {
    operation_.ProgramStatus = kRoutineCalled;
    return dataSheet_.program();
  }
  if (family.program == devices::ProgramRoutine::None) return;
  operation_.ProgramStatus = kRoutineCalled;
  routines_.run(family.program);
}

void ProgramCommand::reportOutcome() {
  if (operation_.ProgramFailed == 0 && operation_.ProgramStatus == kRoutineCalled) {
    reporting_.LogMessage("Programming Device Successfull");
    board_.lamps.DataFlowLampOff();
    board_.lamps.ProgramLampOff();
    reporting_.PlaySoundEvent("OK");
  }
  if (operation_.ProgramStatus == kNoRoutine) {
    reporting_.noteEnding(Ending::NoRoutine, "there is no routine that programs this device");
    reporting_.LogMessage("Device Not Supported - Status 9 - Please Report");
    reporting_.PlaySoundEvent("ERROR");
  }
}

// A serial chip is left with the bus at rest and its supply off, so that it can be taken out.
void ProgramCommand::leaveIdle(const devices::Family& family) {
  if (family.bus == devices::BusKind::Serial) {
    board_.leaveSerialChip();
  } else {
    board_.bus.Reset();
  }
}

}  // namespace kestrel::operations
