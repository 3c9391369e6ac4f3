#include "hardware/error_alert.h"

#include <algorithm>

namespace kestrel::hardware {
namespace {

const char* textOf(bool enabled) { return enabled ? "True" : "False"; }

}  // namespace

ErrorAlert::ErrorAlert(ShellState& shell, Controls& controls, Reporting& reporting, Lamps& lamps,
                       BusPrimitives& bus)
    : shell_(shell),
      controls_(controls),
      reporting_(reporting),
      lamps_(lamps),
      bus_(bus),
      buttons_{&controls.Program_button, &controls.Verify_button, &controls.Read_button,
               &controls.Display_button} {}

void ErrorAlert::RaiseErrorAlert() {
  lock();
  lamps_.ErrorLampOn();
}

void ErrorAlert::Error_label_Click() {
  if (!isRaised()) return;
  lamps_.ErrorLampOff();
  unlock();
  lamps_.ProgramLampOff();
  lamps_.DataFlowLampOff();
  reporting_.LogMessage("Error Alert was Turned Off");
  controls_.ProgressBar1.setValue(0);
  bus_.Reset();
}

void ErrorAlert::setEnabled(Button& button, bool enabled) {
  const auto* const found = std::ranges::find(buttons_, &button);
  if (!locked_ || found == buttons_.end()) {
    button.setEnabled(enabled);
  } else {
    shell_.SavedButtonState[static_cast<std::size_t>(found - buttons_.begin())] = textOf(enabled);
  }
}

bool ErrorAlert::isEnabled(const Button& button) const {
  const auto* const found = std::ranges::find(buttons_, &button);
  if (!locked_ || found == buttons_.end()) return button.enabled();
  return shell_.SavedButtonState[static_cast<std::size_t>(found - buttons_.begin())] ==
         textOf(true);
}

void ErrorAlert::lock() {
  if (locked_) return;
  locked_ = true;
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    shell_.SavedButtonState[i] = textOf(buttons_[i]->enabled());
    buttons_[i]->setEnabled(false);
  }
}

void ErrorAlert::unlock() {
  if (!locked_) return;
  locked_ = false;
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i]->setEnabled(shell_.SavedButtonState[i] == textOf(true));
  }
}

}  // namespace kestrel::hardware
