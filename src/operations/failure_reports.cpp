#include "operations/failure_reports.h"

#include <string>

#include "app/state/text_format.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

const std::string kAsterisks(50, '*');

}  // namespace

void FailureReports::NotBlankReport() {
  reporting_.noteEnding(Ending::Differs,
                        "the device is not blank at address " + hexText(operation_.ProgramIndex),
                        operation_.ProgramIndex);
  alert_.RaiseErrorAlert();
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage("Device IS NOT BLANK (ERASED)");
  reporting_.LogMessage("Address: " + hexText(operation_.ProgramIndex) +
                        " ][ Device Data: " + hexText(latches_.ReadByte));
  reporting_.LogMessage("Click on [ERROR] alert to Reset the Situation");
  reporting_.PlaySoundEvent("ERROR");
}

void FailureReports::VerifyMismatchReport() {
  operation_.VerifyFailed = 1;
  reporting_.noteEnding(
      Ending::Differs,
      "the device differs from the buffer at address " + hexText(operation_.ProgramIndex),
      operation_.ProgramIndex);
  alert_.RaiseErrorAlert();
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage(kAsterisks);
  reporting_.LogMessage("Device Memory DOES NOT VERIFY with Buffer Contents");
  // The byte of the code buffer, also when an odd or even image was compared.
  reporting_.LogMessage("Address: " + hexText(operation_.ProgramIndex) + " ][ Buffer Data: " +
                        hexText(at(buffers_.CodeBuffer, operation_.ProgramIndex)) +
                        " ][ Device Data: " + hexText(latches_.ReadByte));
  reporting_.LogMessage("Click on [ERROR] Alert to Reset the Situation");
  controls_.Verify_button.setColour(Colour::ButtonFace);
  reporting_.PlaySoundEvent("ERROR");
  board_.bus.Reset();
}

void FailureReports::AckErrorReport() {
  reporting_.noteEnding(Ending::Failed, "the device does not acknowledge");
  alert_.RaiseErrorAlert();
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage(kAsterisks);
  reporting_.LogMessage("Device 24CXX DOES NOT RESPOND - ACK Error");
  reporting_.LogMessage("Check Chip Installation Position on Socket");
  reporting_.LogMessage("Click on [ERROR] Alert to Reset the Situation");
  reporting_.PlaySoundEvent("ERROR");
  board_.bus.Reset();
}

void FailureReports::ProgramFailureReport() {
  latches_.RegShadow0 = 0;
  board_.registers.SetReg0();
  board_.bus.CEOFF();
  board_.bus.OEOFF();
  reporting_.noteEnding(
      Ending::Failed,
      "the byte at address " + hexText(latches_.LinearAddress) + " does not program",
      latches_.LinearAddress);
  reporting_.LogMessage("*** Programming Failure ***");
  reporting_.LogMessage("*** Address:" + hexText(latches_.LinearAddress) +
                        "h, Programming BYTE:" + hexText(operation_.ByteToWrite) +
                        "h, Read BYTE:" + hexText(latches_.ReadByte) + "h");
  reporting_.LogMessage("*** Aborting Programming - Click on [ERROR] Indicator to Reset");
  alert_.RaiseErrorAlert();
  board_.lamps.ProgramLampOn();
  operation_.ProgramFailed = 1;
  reporting_.PlaySoundEvent("ERROR");
}

void FailureReports::ChipFailureReport(std::string_view what, Ending ending,
                                       const std::string& reason) {
  const std::string action(what);
  reporting_.noteEnding(ending, reason);
  reporting_.LogMessage("*** " + action + " Failure ***");
  reporting_.LogMessage("*** " + reason);
  reporting_.LogMessage("*** Aborting " + action + " - Click on [ERROR] Indicator to Reset");
  alert_.RaiseErrorAlert();
  reporting_.PlaySoundEvent("ERROR");
}

void FailureReports::ChipUnreadableReport(const data_sheet::Outcome& outcome) {
  if (outcome.kind == data_sheet::Outcome::Kind::NoAcknowledge) return AckErrorReport();
  ChipFailureReport("Reading", Ending::Failed, outcome.reason);
  board_.lamps.DataFlowLampOff();
  board_.bus.Reset();
}

}  // namespace kestrel::operations
