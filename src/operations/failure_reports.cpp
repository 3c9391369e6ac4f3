#include "operations/failure_reports.h"

#include <string>

#include "app/state/text_format.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

const std::string kAsterisks(50, '*');

}  // namespace

void FailureReports::NotBlankReport() {
  alert_.RaiseErrorAlert();
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage("Device IS NOT BLANK (ERASED)");
  p_.reporting.LogMessage("Address: " + hexText(p_.state.ProgramIndex) +
                          " ][ Device Data: " + hexText(p_.state.ReadByte));
  p_.reporting.LogMessage("Click on [ERROR] alert to Reset the Situation");
  p_.reporting.PlaySoundEvent("ERROR");
}

void FailureReports::VerifyMismatchReport() {
  p_.state.VerifyFailed = 1;
  alert_.RaiseErrorAlert();
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage(kAsterisks);
  p_.reporting.LogMessage("Device Memory DOES NOT VERIFY with Buffer Contents");
  // The byte of the code buffer, also when an odd or even image was compared.
  p_.reporting.LogMessage("Address: " + hexText(p_.state.ProgramIndex) + " ][ Buffer Data: " +
                          hexText(at(p_.state.CodeBuffer, p_.state.ProgramIndex)) +
                          " ][ Device Data: " + hexText(p_.state.ReadByte));
  p_.reporting.LogMessage("Click on [ERROR] Alert to Reset the Situation");
  p_.controls.Verify_button.setColour(Colour::ButtonFace);
  p_.reporting.PlaySoundEvent("ERROR");
  p_.bus.Reset();
}

void FailureReports::AckErrorReport() {
  alert_.RaiseErrorAlert();
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage(kAsterisks);
  p_.reporting.LogMessage("Device 24CXX DOES NOT RESPOND - ACK Error");
  p_.reporting.LogMessage("Check Chip Installation Position on Socket");
  p_.reporting.LogMessage("Click on [ERROR] Alert to Reset the Situation");
  p_.reporting.PlaySoundEvent("ERROR");
  p_.bus.Reset();
}

void FailureReports::ProgramFailureReport() {
  p_.state.RegShadow0 = 0;
  p_.registers.SetReg0();
  p_.bus.CEOFF();
  p_.bus.OEOFF();
  p_.reporting.LogMessage("*** Programming Failure ***");
  p_.reporting.LogMessage("*** Address:" + hexText(p_.state.LinearAddress) +
                          "h, Programming BYTE:" + hexText(p_.state.ByteToWrite) +
                          "h, Read BYTE:" + hexText(p_.state.ReadByte) + "h");
  p_.reporting.LogMessage("*** Aborting Programming - Click on [ERROR] Indicator to Reset");
  alert_.RaiseErrorAlert();
  p_.lamps.ProgramLampOn();
  p_.state.ProgramFailed = 1;
  p_.reporting.PlaySoundEvent("ERROR");
}

}  // namespace kestrel::operations
