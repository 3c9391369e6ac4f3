#include "hardware/error_alert.h"

namespace kestrel::hardware {

void ErrorAlert::RaiseErrorAlert() {
  p_.lamps.ErrorLampOn();
  buttons_.lock();
}

void ErrorAlert::Error_label_Click() {
  if (!isRaised()) return;
  p_.lamps.ErrorLampOff();
  p_.lamps.ProgramLampOff();
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage("Error Alert was Turned Off");
  p_.controls.ProgressBar1.setValue(0);
  buttons_.unlock();
  p_.bus.Reset();
}

}  // namespace kestrel::hardware
